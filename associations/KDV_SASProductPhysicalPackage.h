// The adapter as it is sold and the adapter as a piece of hardware. Made for every HBA; owned by the collection,
// used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASProductPhysicalPackage final : public CIM_SystemDevice {
public:
    KDV_SASProductPhysicalPackage(const Logger& logger, const std::string& nameSpace,
                                  const CmpiManagedInstance* product, const CmpiManagedInstance* package);
    ~KDV_SASProductPhysicalPackage() override;

private:
    InstanceLog _log;
};

} // namespace KDV
