// The raw capacity of a disk and the array system that it is attached to. Made for every physical drive; owned by
// the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemStorageExtent final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemStorageExtent(const Logger& logger, const std::string& nameSpace,
                                    const CmpiManagedInstance* arraySystem, const CmpiManagedInstance* extent);
    ~KDV_SASArraySystemStorageExtent() override;

private:
    InstanceLog _log;
};

} // namespace KDV
