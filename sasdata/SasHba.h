// What the provider keeps for one HBA record: the record, its number, the instances that were published for it, and the
// device objects of its logical drives, storage boxes and physical drives in the order of the record lists. Made by
// population and never freed; owns nothing it points at. Touched under the provider's mutex only.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <vector>

namespace KDV {

struct SasLogicalDrive;
struct SasPhysicalDrive;
struct SasStorageBox;

struct SasHba {
    SasHba(const Logger& creator, SasHbaRecord* hbaRecord);
    SasHba(const SasHba&) = delete;
    SasHba& operator=(const SasHba&) = delete;
    ~SasHba();

    // The first match in order, null when nothing matches. Each is a scan: who looks up many at once makes an index.
    SasPhysicalDrive* physicalDriveByNumber(std::uint32_t number) const noexcept;
    SasStorageBox* storageBoxByNumber(std::uint32_t number) const noexcept;
    SasLogicalDrive* logicalDriveByMember(std::uint32_t driveNumber) const noexcept;
    SasLogicalDrive* logicalDriveBySpare(std::uint32_t driveNumber) const noexcept;

    std::uint32_t hbaNumber;
    SasHbaRecord* record;
    CmpiManagedInstance* arraySystem = nullptr;
    CmpiManagedInstance* arrayController = nullptr; // the alerting element of controller alerts
    CmpiManagedInstance* scsiProtocolController = nullptr;
    CmpiManagedInstance* primordialPool = nullptr;
    CmpiManagedInstance* primordialPoolNoRaid = nullptr;
    CmpiManagedInstance* storagePool = nullptr;
    std::vector<SasLogicalDrive*> logicalDrives;
    std::vector<SasStorageBox*> storageBoxes;
    std::vector<SasPhysicalDrive*> physicalDrives;
    Logger logger;
};

} // namespace KDV
