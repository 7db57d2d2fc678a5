// The RAID level of a volume in words and numbers: one table for the volume and its setting.
#pragma once

#include "instances/CodeMap.h"

#include <cstdint>
#include <optional>
#include <string>

namespace KDV {

// "RAID 5"; "No RAID" for every code without a level.
const char* raidText(std::uint8_t raidLevel) noexcept;

// What a level is worth; what is empty is not published.
struct RaidRedundancy {
    std::optional<std::uint16_t> dataRedundancy;
    std::optional<bool> noSinglePointOfFailure;
    std::optional<std::uint16_t> packageRedundancy;
    std::optional<std::uint16_t> faultTolerance;
};

// RAID 5 has data redundancy 1 and level code 7 the same beside package redundancy 0 on purpose: clients read these.
// Any other code, 32 and more among them, has nothing.
inline constexpr CodeMap<RaidRedundancy, 6> raidRedundancy{{{2, {1, false, 0, 1}},             // RAID 0
                                                            {3, {2, true, 1, 2}},              // RAID 1
                                                            {4, {2, true, 1, 3}},              // RAID 0+1
                                                            {5, {1, true, 1, 5}},              // RAID 5
                                                            {6, {2, true, 1, 6}},              // RAID 1+5
                                                            {7, {1, false, 0, std::nullopt}}}, // no level of ours
                                                           {}};

// "Logical Volume 1" and "StorageVolume:1".
std::string volumeElementText(std::uint32_t logicalDriveNumber);
std::string volumeDeviceText(std::uint32_t logicalDriveNumber);

} // namespace KDV
