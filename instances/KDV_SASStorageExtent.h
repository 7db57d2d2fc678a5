// The raw capacity of a physical drive. It reaches the record through the device object, whose rebuilding mark it reads
// too, at each call. Made by population or when a disk is inserted and owned by the collection; used under the
// provider's lock.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"
#include "sasdata/SasPhysicalDrive.h"

#include <string>

namespace KDV {

class KDV_SASStorageExtent final : public CmpiManagedInstance {
public:
    KDV_SASStorageExtent(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                         const SasPhysicalDrive* drive);
    ~KDV_SASStorageExtent() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    const SasPhysicalDrive* _drive;
};

} // namespace KDV
