// The volumes of one HBA: those of the adapter's firmware, of which the kernel tells little and never the members, and
// the md arrays over its drives, of which it tells all. What is not told stays unknown or empty. Pure; throws
// std::bad_alloc only.
#pragma once

#include "records/Records.h"
#include "sashba/sysfs/DeviceAnswer.h"
#include "sashba/sysfs/LiveMachine.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KDV {

struct DriveNumberAndHost {
    std::uint32_t host = 0;
    std::uint32_t number = 0;
};

// By the path of the SCSI device, every way to a drive.
using DrivesByPath = std::map<std::string, DriveNumberAndHost>;

namespace DriveUsage {
constexpr std::uint8_t member = 2;
constexpr std::uint8_t spare = 3;
} // namespace DriveUsage

struct VolumesOfHba {
    std::vector<SasLogicalDriveRecord> volumes;
    std::map<std::uint32_t, std::uint8_t> usages; // of drives, by number
};

// An array with drives of several HBAs belongs to the HBA of its first drive, and lists the drives of that one: a drive
// number means nothing on another HBA.
VolumesOfHba volumesOf(const LiveMachine& machine, const LiveHba& hba, const DrivesByPath& drives,
                       const DeviceAnswers& answers);

// "raid5", "RAID-5" and their like as the code of the records; 0 for a level that has none.
std::uint8_t raidLevelCode(const std::string& text);

} // namespace KDV
