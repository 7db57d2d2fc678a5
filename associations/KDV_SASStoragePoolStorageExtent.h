// A disk's capacity as part of the pool that volumes are made from. Made for every physical drive except those not
// configured for RAID; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStoragePoolStorageExtent final : public CIM_SystemDevice {
public:
    KDV_SASStoragePoolStorageExtent(const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* pool,
                                    const CmpiManagedInstance* extent);
    ~KDV_SASStoragePoolStorageExtent() override;

private:
    InstanceLog _log;
};

} // namespace KDV
