// The controller that an array system consists of. Made for every HBA; owned by the collection, used under the
// provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemArrayController final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemArrayController(const Logger& logger, const std::string& nameSpace,
                                      const CmpiManagedInstance* arraySystem,
                                      const CmpiManagedInstance* arrayController);
    ~KDV_SASArraySystemArrayController() override;

private:
    InstanceLog _log;
};

} // namespace KDV
