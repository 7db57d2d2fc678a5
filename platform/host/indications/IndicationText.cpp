#include "indications/IndicationText.h"

#include <array>
#include <cstdio>
#include <ctime>

#include <nlohmann/json.hpp>

namespace KDV::Host {

namespace {

using Json = nlohmann::ordered_json;

Json objectJson(const InstanceObject& instance, unsigned depth);

Json valueJson(CMPIType type, const CMPIValue& value, unsigned depth)
{
    constexpr unsigned maxDepth = 8;
    switch (type) {
    case CMPI_boolean:
        return value.boolean != 0;
    case CMPI_char16:
        return value.char16;
    case CMPI_uint8:
        return value.uint8;
    case CMPI_uint16:
        return value.uint16;
    case CMPI_uint32:
        return value.uint32;
    case CMPI_uint64:
        return value.uint64;
    case CMPI_sint8:
        return value.sint8;
    case CMPI_sint16:
        return value.sint16;
    case CMPI_sint32:
        return value.sint32;
    case CMPI_sint64:
        return value.sint64;
    case CMPI_real32:
        return value.real32;
    case CMPI_real64:
        return value.real64;
    case CMPI_string:
        return std::string(textOf(value));
    case CMPI_dateTime:
        return std::string(dateTextOf(value));
    case CMPI_ref:
        return value.ref ? Json(PathObject::of(value.ref).text()) : Json();
    case CMPI_instance:
        return value.inst && depth < maxDepth ? objectJson(InstanceObject::of(value.inst), depth + 1) : Json();
    default:
        return nullptr;
    }
}

Json dataJson(const CMPIData& data, unsigned depth)
{
    if (isNull(data)) return nullptr;
    if ((data.type & CMPI_ARRAY) == 0) return valueJson(data.type, data.value, depth);
    Json list = Json::array();
    const ArrayObject& array = ArrayObject::of(data.value.array);
    for (const CMPIData& element : array)
        list.push_back(isNull(element) ? Json() : valueJson(array.elementType, element.value, depth));
    return list;
}

Json objectJson(const InstanceObject& instance, unsigned depth)
{
    Json properties = Json::object();
    for (const PropertyEntry& entry : instance.properties())
        if (!entry.isNull()) properties[entry.property->name] = dataJson(entry.data(), depth);
    return {{"class", instance.path->className}, {"properties", std::move(properties)}};
}

std::string textProperty(const InstanceObject& indication, const char* name)
{
    const PropertyEntry* entry = indication.find(name);
    if (!entry || entry->isNull()) return {};
    if (entry->type == CMPI_string) return std::string(textOf(entry->value));
    const Json json = dataJson(entry->data(), 0);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// PerceivedSeverity of CIM_Indication as a priority of syslog.
int priorityOf(const InstanceObject& indication)
{
    constexpr std::array<int, 8> priorities{5, 5, 6, 4, 4, 3, 2, 1};
    const PropertyEntry* entry = indication.find("PerceivedSeverity");
    if (!entry || entry->isNull() || entry->type != CMPI_uint16 || entry->value.uint16 >= priorities.size()) return 5;
    return priorities[entry->value.uint16];
}

} // namespace

std::string indicationLine(std::string_view nameSpace, const InstanceObject& indication, std::int64_t microseconds)
{
    Json line{{"time", dateTimeText(microseconds)}, {"namespace", nameSpace}};
    line.update(objectJson(indication, 0));
    return line.dump(-1, ' ', false, Json::error_handler_t::replace);
}

JournalFields indicationFields(std::string_view identifier, std::string_view nameSpace,
                               const InstanceObject& indication)
{
    JournalFields fields;
    std::string message = textProperty(indication, "Summary");
    const std::string description = textProperty(indication, "Description");
    if (message.empty())
        message = description.empty() ? "indication of " + std::string(indication.path->className) : description;
    fields.emplace_back("MESSAGE", message);
    fields.emplace_back("PRIORITY", std::to_string(priorityOf(indication)));
    fields.emplace_back("SYSLOG_IDENTIFIER", identifier);
    fields.emplace_back("KDV_CLASS", indication.path->className);
    fields.emplace_back("KDV_NAMESPACE", nameSpace);
    struct Source {
        const char* field;
        const char* property;
    };
    for (const Source& source :
         {Source{"KDV_EVENT_ID", "EventID"}, Source{"KDV_ELEMENT", "AlertingManagedElement"},
          Source{"KDV_SEVERITY", "PerceivedSeverity"}, Source{"KDV_DESCRIPTION", "Description"},
          Source{"KDV_RECOMMENDED_ACTIONS", "RecommendedActions"}, Source{"KDV_CATEGORY", "EventCategory"},
          Source{"KDV_PROBABLE_CAUSE", "ProbableCause"}, Source{"KDV_LOCATION", "HWLogicalLocation"},
          Source{"KDV_SERIAL_NUMBER", "HWSerialNumber"}, Source{"KDV_MODEL", "DeviceModel"},
          Source{"KDV_FIRMWARE", "HWFirmwareVersion"}, Source{"KDV_MESSAGE_ID", "MessageID"},
          Source{"KDV_INDICATION_ID", "IndicationIdentifier"}})
        if (std::string text = textProperty(indication, source.property); !text.empty())
            fields.emplace_back(source.field, std::move(text));
    return fields;
}

std::string dateTimeText(std::int64_t microseconds)
{
    std::int64_t seconds = microseconds / 1'000'000;
    std::int64_t fraction = microseconds % 1'000'000;
    if (fraction < 0) {
        fraction += 1'000'000;
        --seconds;
    }
    const std::time_t time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    std::array<char, 32> day{};
    if (!::gmtime_r(&time, &parts) || std::strftime(day.data(), day.size(), "%Y%m%d%H%M%S", &parts) != 14)
        return "00010101000000.000000+000";
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%s.%06d+000", day.data(), static_cast<int>(fraction));
    return text.data();
}

} // namespace KDV::Host
