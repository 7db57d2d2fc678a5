// What "smartctl --json" says of a disk. Versions name some things differently; the names of 6.7 to 7.x are known.
// Pure; output that is cut off, no JSON or of other types than expected gives what it has. Throws std::bad_alloc only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace KDV {

struct SmartctlReport {
    int exitStatus = 0;    // bits: 1 bad call, 2 device not opened or asleep, 4 a command failed ...
    bool asleep = false;   // it did not look further, so as not to wake the disk
    bool supported = true; // the disk has a health status at all
    std::optional<bool> passed;
    bool warned = false; // of something short of a predicted failure
    std::optional<std::uint32_t> powerOnHours;
    std::optional<std::uint32_t> enduranceUsed; // percent
    std::optional<std::uint16_t> rotation;      // 1 solid state, as on the Block Device Characteristics page
    std::optional<std::uint8_t> temperature;    // degrees Celsius
    std::string serial, firmware;
    std::string vendor, model;
};

std::optional<SmartctlReport> parseSmartctlOutput(std::string_view output);

} // namespace KDV
