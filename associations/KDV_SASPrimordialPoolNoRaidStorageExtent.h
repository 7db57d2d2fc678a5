// A disk outside any volume as part of the pool of such disks. Made for every physical drive that is not configured
// for RAID; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASPrimordialPoolNoRaidStorageExtent final : public CIM_SystemDevice {
public:
    KDV_SASPrimordialPoolNoRaidStorageExtent(const Logger& logger, const std::string& nameSpace,
                                             const CmpiManagedInstance* pool, const CmpiManagedInstance* extent);
    ~KDV_SASPrimordialPoolNoRaidStorageExtent() override;

private:
    InstanceLog _log;
};

} // namespace KDV
