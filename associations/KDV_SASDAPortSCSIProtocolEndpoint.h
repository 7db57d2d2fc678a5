// The SCSI endpoint that a drive port implements. Made for every HBA; owned by the collection, used under the
// provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASDAPortSCSIProtocolEndpoint final : public CIM_Dependency {
public:
    KDV_SASDAPortSCSIProtocolEndpoint(const Logger& logger, const std::string& nameSpace,
                                      const CmpiManagedInstance* port, const CmpiManagedInstance* endpoint);
    ~KDV_SASDAPortSCSIProtocolEndpoint() override;

private:
    InstanceLog _log;
};

} // namespace KDV
