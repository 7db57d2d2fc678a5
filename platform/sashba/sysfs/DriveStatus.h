// The one status byte of a drive, from everything that is known of it. Pure.
#pragma once

#include "sashba/sysfs/DeviceAnswer.h"
#include "sashba/sysfs/LiveMachine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace KDV {

namespace DriveStatus {
constexpr std::uint8_t unknown = 0;
constexpr std::uint8_t ok = 2;
constexpr std::uint8_t failurePredicted = 3;
constexpr std::uint8_t failedByBox = 4; // 4 to 9 are failures of the drive, told apart here only
constexpr std::uint8_t offline = 5;
constexpr std::uint8_t notReady = 6;
constexpr std::uint8_t noConnect = 7;
constexpr std::uint8_t wornOut = 10; // the second kind of predicted failure
constexpr std::uint8_t degraded = 12;
} // namespace DriveStatus

struct DrivePathFacts {
    const ScsiDevice* device = nullptr;
    const DeviceAnswer* answer = nullptr; // null: not asked yet
};

struct DriveFacts {
    std::vector<DrivePathFacts> paths;    // every way to the drive
    const SlotHealth* slot = nullptr;     // what its box says on its page
    const SlotState* slotState = nullptr; // what the enclosure class says
};

// A drive is OK only when it said so itself: it answers, and nothing speaks against it.
std::uint8_t driveStatus(const DriveFacts& facts);

} // namespace KDV
