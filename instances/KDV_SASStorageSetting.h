// The RAID setting of a logical drive: what redundancy the volume was made with. Made by population and owned by the
// collection; reads its records under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASStorageSetting final : public CmpiManagedInstance {
public:
    KDV_SASStorageSetting(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                          const SasLogicalDriveRecord* logicalDrive);
    ~KDV_SASStorageSetting() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    const SasLogicalDriveRecord* _logicalDrive;
};

} // namespace KDV
