// A disk's capacity as part of the HBA's primordial pool. Made for every physical drive except those not configured
// for RAID; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASPrimordialPoolStorageExtent final : public CIM_SystemDevice {
public:
    KDV_SASPrimordialPoolStorageExtent(const Logger& logger, const std::string& nameSpace,
                                       const CmpiManagedInstance* pool, const CmpiManagedInstance* extent);
    ~KDV_SASPrimordialPoolStorageExtent() override;

private:
    InstanceLog _log;
};

} // namespace KDV
