// The spares of a logical drive with its members: made only for a logical drive that has spares. Its identity uses the
// numbers in its own record. Made by population and owned by the collection; reads its record under the provider's lock
// at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASStorageRedundancySet final : public CmpiManagedInstance {
public:
    KDV_SASStorageRedundancySet(const Logger& logger, const std::string& nameSpace,
                                const SasLogicalDriveRecord* logicalDrive);
    ~KDV_SASStorageRedundancySet() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasLogicalDriveRecord* _logicalDrive;
};

} // namespace KDV
