// The drives of one HBA with all ways to them, their places and numbers, before records are made of them. One thread
// at a time; throws std::bad_alloc only.
#pragma once

#include "records/Records.h"
#include "sashba/sysfs/BoxPlan.h"
#include "sashba/sysfs/DriveStatus.h"
#include "sashba/sysfs/LiveMachine.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KDV {

struct DrivePlan {
    std::string identity;
    std::uint32_t host = 0;               // of the HBA whose drive it is
    std::vector<const ScsiDevice*> paths; // the first one is what the record tells of
    std::optional<BoxPlace> place;        // among the boxes of the HBA
    std::string port;                     // of the adapter; two drives of a box may be at two of them
    std::uint64_t device = 0;             // at the port, where no bay is known

    bool inBay() const noexcept { return place && place->bay; }
    std::optional<std::uint32_t> number;
};

// Every disk once, in the order of HBAs and addresses. A disk with two ways belongs to the HBA of the first one.
std::vector<DrivePlan> groupDrives(const LiveMachine& machine);

// Fills place, port and device.
void placeDrive(DrivePlan& drive, const std::vector<BoxPlan>& boxes, PortNames& ports);

std::optional<std::uint32_t> wishedNumber(const DrivePlan& drive, const std::vector<BoxPlan>& boxes);

std::string locationText(const DrivePlan& drive, const std::vector<BoxPlan>& boxes);

SasPhysicalDriveRecord driveImage(const DrivePlan& drive, const std::vector<BoxPlan>& boxes,
                                  const DeviceAnswers& answers);

} // namespace KDV
