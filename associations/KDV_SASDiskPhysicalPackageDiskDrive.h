// A disk as a piece of hardware and the disk drive that it realizes. Made for every physical drive; owned by the
// collection, used under the provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASDiskPhysicalPackageDiskDrive final : public CIM_Dependency {
public:
    KDV_SASDiskPhysicalPackageDiskDrive(const Logger& logger, const std::string& nameSpace,
                                        const CmpiManagedInstance* package, const CmpiManagedInstance* diskDrive);
    ~KDV_SASDiskPhysicalPackageDiskDrive() override;

private:
    InstanceLog _log;
};

} // namespace KDV
