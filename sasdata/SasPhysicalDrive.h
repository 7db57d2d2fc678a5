// What the provider keeps for one physical drive record: the record, its number, and the instances that were published
// for it. Made by population or when a disk is inserted, and never freed, also not when the disk is pulled: its record
// stays readable. Owns neither the record (the data library does) nor the instances (the collection does). Touched
// under the provider's mutex only.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <vector>

namespace KDV {

struct SasPhysicalDrive {
    SasPhysicalDrive(const Logger& creator, SasPhysicalDriveRecord* physicalDriveRecord);
    SasPhysicalDrive(const SasPhysicalDrive&) = delete;
    SasPhysicalDrive& operator=(const SasPhysicalDrive&) = delete;
    ~SasPhysicalDrive();

    std::uint32_t driveNumber; // the key of members, spares, hot-plug and lookups
    SasPhysicalDriveRecord* record;
    CmpiManagedInstance* diskDrive = nullptr; // the alerting element of physical drive alerts
    bool hotPlugTracked;                      // not configured for RAID when it was found: a pull hides its instances
    std::vector<CmpiManagedInstance*> trackedInstances; // only when tracked: what a pull hides, in order of creation
    bool rebuilding = false;                            // read by the disk's extent at each call
    Logger logger;
};

} // namespace KDV
