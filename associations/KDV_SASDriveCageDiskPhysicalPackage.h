// A disk as a piece of hardware in the drive cage of its storage box. Made for every physical drive whose storage
// box is known; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASDriveCageDiskPhysicalPackage final : public CIM_SystemDevice {
public:
    KDV_SASDriveCageDiskPhysicalPackage(const Logger& logger, const std::string& nameSpace,
                                        const CmpiManagedInstance* driveCage, const CmpiManagedInstance* package);
    ~KDV_SASDriveCageDiskPhysicalPackage() override;

private:
    InstanceLog _log;
};

} // namespace KDV
