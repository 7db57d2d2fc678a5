// The port through which an array system reaches its drives. Made for every HBA; owned by the collection, used under
// the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemDAPort final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemDAPort(const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* arraySystem,
                             const CmpiManagedInstance* port);
    ~KDV_SASArraySystemDAPort() override;

private:
    InstanceLog _log;
};

} // namespace KDV
