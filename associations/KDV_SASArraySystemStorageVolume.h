// A volume and the array system that presents it. Made for every logical drive; owned by the collection, used under
// the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemStorageVolume final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemStorageVolume(const Logger& logger, const std::string& nameSpace,
                                    const CmpiManagedInstance* arraySystem, const CmpiManagedInstance* volume);
    ~KDV_SASArraySystemStorageVolume() override;

private:
    InstanceLog _log;
};

} // namespace KDV
