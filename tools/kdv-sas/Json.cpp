#include "kdv-sas/Json.h"

#include "kdv-sas/PathText.h"

#include <cstdlib>

#include <nlohmann/json.hpp>

namespace KdvSas {
namespace {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json, int indent) { return json.dump(indent, ' ', false, Json::error_handler_t::replace); }

Json element(const Element& element)
{
    return {{"name", element.name},
            {"id", element.id},
            {"health", word(element.health)},
            {"status", element.status},
            {"detail", element.detail}};
}

Json scalar(const std::string& type, const std::string& value)
{
    if (type == "boolean") return Cim::sameName(value, "true");
    if (type.compare(0, 4, "uint") == 0) return std::strtoull(value.c_str(), nullptr, 10);
    if (type.compare(0, 4, "sint") == 0) return std::strtoll(value.c_str(), nullptr, 10);
    return value;
}

Json value(const Cim::Property& property)
{
    if (property.isNull) return nullptr;
    if (property.reference) return pathText(*property.reference);
    if (!property.isArray) return property.values.empty() ? Json("") : scalar(property.type, property.values.front());
    Json list = Json::array();
    for (const std::string& item : property.values)
        list.push_back(scalar(property.type, item));
    return list;
}

Json toJson(const Cim::Instance& instance)
{
    Json json{{"class", instance.className}};
    if (!instance.path.className.empty()) json["path"] = pathText(instance.path);
    Json properties = Json::object();
    for (const Cim::Property& property : instance.properties)
        properties[property.name] = value(property);
    json["properties"] = std::move(properties);
    return json;
}

} // namespace

std::string statusJson(const Machine& machine)
{
    Json adapters = Json::array();
    for (const Adapter& adapter : machine.adapters) {
        Json json = element(adapter);
        json["firmware"] = adapter.firmware;
        json["controllerHealth"] = word(adapter.controller);
        adapters.push_back(std::move(json));
    }
    Json boxes = Json::array();
    for (const Box& box : machine.boxes) {
        Json json = element(box);
        json["adapter"] = box.system;
        json["bays"] = box.bays;
        Json sensors = Json::array();
        for (const Element& sensor : box.sensors)
            sensors.push_back({{"name", sensor.name}, {"health", word(sensor.health)}, {"status", sensor.status}});
        json["sensors"] = std::move(sensors);
        boxes.push_back(std::move(json));
    }
    Json volumes = Json::array();
    for (const Volume& volume : machine.volumes) {
        Json json = element(volume);
        json["adapter"] = volume.system;
        json["members"] = volume.members;
        volumes.push_back(std::move(json));
    }
    Json disks = Json::array();
    for (const Disk& disk : machine.disks) {
        Json json = element(disk);
        json["adapter"] = disk.system;
        json["box"] = disk.box;
        json["volume"] = disk.volume;
        json["use"] = disk.use;
        disks.push_back(std::move(json));
    }
    return dump({{"health", word(machine.worst())},
                 {"adapters", std::move(adapters)},
                 {"boxes", std::move(boxes)},
                 {"volumes", std::move(volumes)},
                 {"disks", std::move(disks)}},
                2);
}

std::string instanceJson(const Cim::Instance& instance) { return dump(toJson(instance), -1); }

std::string instancesJson(const std::vector<Cim::Instance>& instances)
{
    Json list = Json::array();
    for (const Cim::Instance& instance : instances)
        list.push_back(toJson(instance));
    return dump(list, 2);
}

} // namespace KdvSas
