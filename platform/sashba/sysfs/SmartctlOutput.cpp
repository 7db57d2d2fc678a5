#include "sashba/sysfs/SmartctlOutput.h"

#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/ScsiPages.h"

#include <initializer_list>
#include <limits>

#include <nlohmann/json.hpp>

namespace KDV {
namespace {

using Json = nlohmann::json;

constexpr std::size_t mostBytes = std::size_t{1} << 20;

// The value below the names one after the other; null when there is none.
const Json* below(const Json& from, std::initializer_list<const char*> names)
{
    const Json* at = &from;
    for (const char* name : names) {
        if (!at->is_object()) return nullptr;
        const auto found = at->find(name);
        if (found == at->end()) return nullptr;
        at = &*found;
    }
    return at;
}

template <class Number>
std::optional<Number> numberBelow(const Json& from, std::initializer_list<const char*> names)
{
    const Json* value = below(from, names);
    if (!value || !value->is_number_unsigned() ||
        value->get<std::uint64_t>() > std::uint64_t{std::numeric_limits<Number>::max()})
        return std::nullopt;
    return value->get<Number>();
}

std::string textBelow(const Json& from, std::initializer_list<const char*> names)
{
    const Json* value = below(from, names);
    return value && value->is_string() ? std::string(trimmed(value->get_ref<const std::string&>())) : std::string();
}

std::string firstText(const Json& from, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        std::string text = textBelow(from, {name});
        if (!text.empty()) return text;
    }
    return {};
}

std::optional<bool> flagBelow(const Json& from, std::initializer_list<const char*> names)
{
    const Json* value = below(from, names);
    return value && value->is_boolean() ? std::optional<bool>(value->get<bool>()) : std::nullopt;
}

// SATA disks have it in a table of device statistics.
std::optional<std::uint32_t> enduranceInStatistics(const Json& root)
{
    const Json* pages = below(root, {"ata_device_statistics", "pages"});
    if (!pages || !pages->is_array()) return std::nullopt;
    for (const Json& page : *pages) {
        const Json* table = below(page, {"table"});
        if (!table || !table->is_array()) continue;
        for (const Json& row : *table) {
            if (textBelow(row, {"name"}) == "Percentage Used Endurance Indicator" &&
                flagBelow(row, {"flags", "valid"}).value_or(true))
                return numberBelow<std::uint32_t>(row, {"value"});
        }
    }
    return std::nullopt;
}

// SATA disks without those statistics have it in an attribute that every maker names in his way: the percentage left,
// which begins at 100.
std::optional<std::uint32_t> enduranceInAttributes(const Json& root)
{
    const Json* table = below(root, {"ata_smart_attributes", "table"});
    if (!table || !table->is_array()) return std::nullopt;
    for (const Json& row : *table) {
        const std::string name = textBelow(row, {"name"});
        const auto left = numberBelow<std::uint8_t>(row, {"value"});
        for (const char* known :
             {"Media_Wearout_Indicator", "Percent_Lifetime_Remain", "SSD_Life_Left", "Wear_Leveling_Count"}) {
            if (name == known && left && *left <= 100) return 100U - *left;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> enduranceUsed(const Json& root)
{
    if (const auto used = numberBelow<std::uint32_t>(root, {"scsi_percentage_used_endurance_indicator"})) return used;
    if (const auto used = numberBelow<std::uint32_t>(root, {"endurance_used", "current_percent"})) return used;
    if (const auto used = enduranceInStatistics(root)) return used;
    return enduranceInAttributes(root);
}

// It calls every informational exception of a SCSI disk a failure, also the test of one and mere warnings.
void readHealth(const Json& root, SmartctlReport& report)
{
    report.passed = flagBelow(root, {"smart_status", "passed"});
    const auto asc = numberBelow<std::uint8_t>(root, {"smart_status", "scsi", "asc"});
    const auto ascq = numberBelow<std::uint8_t>(root, {"smart_status", "scsi", "ascq"});
    if (!asc || !ascq) return;
    const InformationalExceptions said{*asc, *ascq};
    report.warned = said.warns();
    if (report.passed == false && !said.predictsFailure() &&
        (said.warns() || *asc == InformationalExceptions::exceeded))
        report.passed = true;
}

bool saysAsleep(const Json& root)
{
    const Json* messages = below(root, {"smartctl", "messages"});
    if (!messages || !messages->is_array()) return false;
    for (const Json& message : *messages) {
        const std::string text = textBelow(message, {"string"});
        if (text.find("STANDBY") != std::string::npos || text.find("SLEEP") != std::string::npos) return true;
    }
    return false;
}

// In its words 0 is a disk that does not turn.
std::optional<std::uint16_t> rotationOf(const Json& root)
{
    const auto rate = numberBelow<std::uint16_t>(root, {"rotation_rate"});
    return rate == std::uint16_t{0} ? std::uint16_t{1} : rate;
}

} // namespace

std::optional<SmartctlReport> parseSmartctlOutput(std::string_view output)
{
    if (output.size() > mostBytes) return std::nullopt;
    const Json root = Json::parse(output.begin(), output.end(), nullptr, false);
    if (!root.is_object() || !below(root, {"smartctl"})) return std::nullopt;
    SmartctlReport report;
    report.exitStatus = numberBelow<std::uint8_t>(root, {"smartctl", "exit_status"}).value_or(std::uint8_t{0});
    report.asleep = saysAsleep(root);
    report.supported = flagBelow(root, {"smart_support", "available"}).value_or(true);
    readHealth(root, report);
    report.powerOnHours = numberBelow<std::uint32_t>(root, {"power_on_time", "hours"});
    report.enduranceUsed = enduranceUsed(root);
    report.rotation = rotationOf(root);
    report.temperature = numberBelow<std::uint8_t>(root, {"temperature", "current"});
    if (!report.supported && report.temperature == std::uint8_t{0})
        report.temperature.reset(); // it prints 0 for a disk that has no sensor
    report.serial = firstText(root, {"serial_number"});
    report.firmware = firstText(root, {"firmware_version", "scsi_revision", "revision"});
    report.vendor = firstText(root, {"scsi_vendor", "vendor"});
    report.model = firstText(root, {"scsi_product", "product", "model_name"});
    return report;
}

} // namespace KDV
