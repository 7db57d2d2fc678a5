// The usage byte of a physical drive record. Any other value is a plain drive.
#pragma once

#include <cstdint>

namespace KDV::DriveUsage {

inline constexpr std::uint8_t Member = 2; // of a logical drive
inline constexpr std::uint8_t Spare = 3;
inline constexpr std::uint8_t NotConfigured = 4; // for RAID

} // namespace KDV::DriveUsage
