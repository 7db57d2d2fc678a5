// What the provider keeps for one logical drive record: the record, its number, and the instances that were published
// for it. Made by population and never freed; owns neither the record (the data library does) nor the instances (the
// collection does). Touched under the provider's mutex only.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>

namespace KDV {

struct SasLogicalDrive {
    SasLogicalDrive(const Logger& creator, SasLogicalDriveRecord* logicalDriveRecord);
    SasLogicalDrive(const SasLogicalDrive&) = delete;
    SasLogicalDrive& operator=(const SasLogicalDrive&) = delete;
    ~SasLogicalDrive();

    // Is the drive number in the record's list? The count is read at every step and never believed beyond the list.
    bool hasMember(std::uint32_t driveNumber) const noexcept;
    bool hasSpare(std::uint32_t driveNumber) const noexcept;

    std::uint32_t logicalDriveNumber;
    SasLogicalDriveRecord* record;
    CmpiManagedInstance* storageVolume = nullptr; // the alerting element of logical drive alerts
    CmpiManagedInstance* redundancySet = nullptr; // stays null without spares
    Logger logger;
};

} // namespace KDV
