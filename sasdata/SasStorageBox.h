// What the provider keeps for one storage box record: the record, its number, and the instances that were published for
// it. Made by population and never freed; owns neither the record (the data library does) nor the instances (the
// collection does). Touched under the provider's mutex only.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>

namespace KDV {

struct SasStorageBox {
    SasStorageBox(const Logger& creator, SasStorageBoxRecord* storageBoxRecord);
    SasStorageBox(const SasStorageBox&) = delete;
    SasStorageBox& operator=(const SasStorageBox&) = delete;
    ~SasStorageBox();

    std::uint32_t boxNumber; // a byte in the record
    SasStorageBoxRecord* record;
    CmpiManagedInstance* driveCage = nullptr;
    CmpiManagedInstance* enclosureProcessor = nullptr; // the alerting element of box alerts
    Logger logger;
};

} // namespace KDV
