// The SCSI protocol controller through which an array system presents its volumes. Made for every HBA; owned by the
// collection, used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemSCSIProtocolController final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemSCSIProtocolController(const Logger& logger, const std::string& nameSpace,
                                             const CmpiManagedInstance* arraySystem,
                                             const CmpiManagedInstance* protocolController);
    ~KDV_SASArraySystemSCSIProtocolController() override;

private:
    InstanceLog _log;
};

} // namespace KDV
