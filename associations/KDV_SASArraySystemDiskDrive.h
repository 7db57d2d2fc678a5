// A disk drive and the array system that it is attached to. Made for every physical drive; owned by the collection,
// used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemDiskDrive final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemDiskDrive(const Logger& logger, const std::string& nameSpace,
                                const CmpiManagedInstance* arraySystem, const CmpiManagedInstance* diskDrive);
    ~KDV_SASArraySystemDiskDrive() override;

private:
    InstanceLog _log;
};

} // namespace KDV
