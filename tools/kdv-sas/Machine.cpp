#include "kdv-sas/Machine.h"

#include <map>

namespace KdvSas {
namespace {

using Cim::Instance;
using Cim::Path;

// Follows one association class: key of the one end to key of the other.
using Links = std::multimap<std::string, std::string>;

class Reader {
public:
    Reader(Cim::Connection& connection, const std::string& nameSpace) : _connection(connection), _nameSpace(nameSpace)
    {
    }

    std::vector<Instance> instances(const char* className)
    {
        return _connection.send(Cim::enumerateInstances(_nameSpace, className)).instances;
    }

    // The two ends' keys, named by role and key.
    Links links(const char* className, const char* fromRole, const char* fromKey, const char* toRole, const char* toKey)
    {
        Links links;
        for (const Path& path : _connection.send(Cim::enumerateInstanceNames(_nameSpace, className)).paths) {
            const Path* from = end(path, fromRole);
            const Path* to = end(path, toRole);
            if (from && to) links.emplace(from->key(fromKey), to->key(toKey));
        }
        return links;
    }

private:
    static const Path* end(const Path& association, const char* role)
    {
        for (const Cim::Key& key : association.keys)
            if (key.reference && Cim::sameName(key.name, role)) return key.reference.get();
        return nullptr;
    }

    Cim::Connection& _connection;
    const std::string& _nameSpace;
};

std::string first(const Links& links, const std::string& from)
{
    const auto found = links.find(from);
    return found == links.end() ? std::string() : found->second;
}

void fill(Element& element, const Instance& instance, const char* idProperty)
{
    const std::vector<unsigned long> status = instance.numbers("OperationalStatus");
    element.name = instance.text("ElementName");
    element.id = instance.text(idProperty);
    element.health = healthOf(status);
    element.status = statusText(status);
}

std::vector<Adapter> readAdapters(Reader& reader)
{
    std::map<std::string, Health> controllers;
    for (const Instance& instance : reader.instances("KDV_SASArrayController"))
        controllers[instance.text("Name")] = healthOf(instance.numbers("OperationalStatus"));
    const Links firmware = reader.links("KDV_SASFirmwareArraySystem", "Dependent", "Name", "Antecedent", "InstanceID");
    std::map<std::string, std::string> versions;
    for (const Instance& instance : reader.instances("KDV_SASFirmware"))
        versions[instance.text("InstanceID")] = instance.text("VersionString");
    std::vector<Adapter> adapters;
    for (const Instance& instance : reader.instances("KDV_SASArraySystem")) {
        Adapter adapter;
        fill(adapter, instance, "Name");
        adapter.controller = controllers.count(adapter.id) ? controllers[adapter.id] : Health::Unknown;
        adapter.firmware = versions[first(firmware, adapter.id)];
        adapter.detail = adapter.id + (adapter.firmware.empty() ? "" : ", firmware " + adapter.firmware);
        adapter.health = worse(adapter.health, adapter.controller);
        if (adapter.controller == Health::Failed) adapter.status = "Controller failed";
        adapters.push_back(std::move(adapter));
    }
    return adapters;
}

std::vector<Box> readBoxes(Reader& reader)
{
    const Links systems =
        reader.links("KDV_SASArraySystemStorageEnclosureProcessor", "PartComponent", "Name", "GroupComponent", "Name");
    const Links enclosures =
        reader.links("KDV_SASStorageEnclosureStorageEnclosureProcessor", "Dependent", "Name", "Antecedent", "Tag");
    const Links cages =
        reader.links("KDV_SASStorageEnclosureDriveCage", "GroupComponent", "Tag", "PartComponent", "Tag");
    std::map<std::string, Instance> cageByTag;
    for (Instance& cage : reader.instances("KDV_SASDriveCage"))
        cageByTag[cage.text("Tag")] = cage;
    std::vector<Box> boxes;
    for (const Instance& instance : reader.instances("KDV_SASStorageEnclosureProcessor")) {
        Box box;
        fill(box, instance, "Name");
        box.system = first(systems, box.id);
        const std::string cageTag = first(cages, first(enclosures, box.id));
        const Instance& cage = cageByTag[cageTag];
        box.bays = cage.number("DriveBays", 0);
        box.detail = cage.text("Manufacturer") + " " + cage.text("Model") + ", serial " + cage.text("SerialNumber");
        box.id = cageTag.empty() ? box.id : cageTag; // disks name the cage
        const std::vector<unsigned long> status = instance.numbers("OperationalStatus");
        static const char* const names[] = {"Fans", "Power supplies", "Temperature"};
        for (std::size_t i = 1; i < status.size() && i <= 3; ++i) {
            Element sensor;
            sensor.name = names[i - 1];
            sensor.health = healthOf({status[i]});
            sensor.status = statusText({status[i]});
            // A box without a sensor says unknown of it; that alone does not make the box unknown.
            if (sensor.health != Health::Unknown) box.health = worse(box.health, sensor.health);
            box.sensors.push_back(std::move(sensor));
        }
        boxes.push_back(std::move(box));
    }
    return boxes;
}

std::vector<Volume> readVolumes(Reader& reader, std::map<std::string, std::string>& volumeOfDisk)
{
    // A volume's DeviceID is unique behind its adapter only, so both keys name it.
    std::vector<Volume> volumes;
    for (const Instance& instance : reader.instances("KDV_SASStorageVolume")) {
        Volume volume;
        fill(volume, instance, "DeviceID");
        volume.system = instance.text("SystemName");
        volume.id = volume.system + "/" + volume.id;
        const unsigned long blocks = instance.number("NumberOfBlocks", 0);
        volume.detail = std::to_string(blocks / 2 / 1024 / 1024) + " GiB";
        if (instance.numbers("ExtentStatus") == std::vector<unsigned long>{11}) {
            volume.status += ", rebuilding";
            volume.health = worse(volume.health, Health::Degraded);
        }
        const std::string osName = instance.text("OSName");
        if (!osName.empty()) volume.detail += ", " + osName;
        volumes.push_back(std::move(volume));
    }
    const Links devices =
        reader.links("KDV_SASStorageExtentStorageVolume", "Antecedent", "DeviceID", "Dependent", "DeviceID");
    const Links systems =
        reader.links("KDV_SASStorageExtentStorageVolume", "Antecedent", "DeviceID", "Dependent", "SystemName");
    for (const auto& [disk, device] : devices) {
        const std::string id = first(systems, disk) + "/" + device;
        volumeOfDisk[disk] = id;
        for (Volume& volume : volumes)
            if (volume.id == id) volume.members.push_back(disk);
    }
    return volumes;
}

std::string useOf(unsigned long configuration)
{
    switch (configuration) {
    case 2:
        return "member";
    case 3:
        return "spare";
    case 4:
        return "unassigned";
    default:
        return "plain";
    }
}

std::vector<Disk> readDisks(Reader& reader, const std::map<std::string, std::string>& volumeOfDisk)
{
    const Links cages =
        reader.links("KDV_SASDriveCageDiskPhysicalPackage", "PartComponent", "Tag", "GroupComponent", "Tag");
    std::map<std::string, std::string> models;
    for (const Instance& package : reader.instances("KDV_SASDiskPhysicalPackage"))
        models[package.text("Tag")] = package.text("Manufacturer") + " " + package.text("Model");
    std::vector<Disk> disks;
    for (const Instance& instance : reader.instances("KDV_SASDiskDrive")) {
        Disk disk;
        fill(disk, instance, "DeviceID");
        disk.system = instance.text("SystemName");
        disk.box = first(cages, disk.id);
        const auto volume = volumeOfDisk.find(disk.id);
        disk.volume = volume == volumeOfDisk.end() ? "" : volume->second;
        disk.use = useOf(instance.number("DriveConfiguration", 0));
        disk.detail = models[disk.id] + ", " + instance.text("Description") + ", serial " + disk.id;
        disks.push_back(std::move(disk));
    }
    return disks;
}

} // namespace

Health Machine::worst() const
{
    if (adapters.empty()) return Health::Unknown;
    Health worst = Health::Ok;
    for (const Adapter& adapter : adapters)
        worst = worse(worst, adapter.health);
    for (const Box& box : boxes)
        worst = worse(worst, box.health);
    for (const Volume& volume : volumes)
        worst = worse(worst, volume.health);
    for (const Disk& disk : disks)
        worst = worse(worst, disk.health);
    return worst;
}

Machine readMachine(Cim::Connection& connection, const std::string& nameSpace)
{
    Reader reader(connection, nameSpace);
    Machine machine;
    machine.adapters = readAdapters(reader);
    machine.boxes = readBoxes(reader);
    std::map<std::string, std::string> volumeOfDisk;
    machine.volumes = readVolumes(reader, volumeOfDisk);
    machine.disks = readDisks(reader, volumeOfDisk);
    return machine;
}

} // namespace KdvSas
