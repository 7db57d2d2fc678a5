// A volume and the SCSI protocol controller through which it is presented. Made for every logical drive; owned by
// the collection, used under the provider's lock. It adds no log line of its own to a request.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "instances/KDV_SASStorageVolume.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASSCSIProtocolControllerStorageVolume final : public CIM_Dependency {
public:
    KDV_SASSCSIProtocolControllerStorageVolume(const Logger& logger, const std::string& nameSpace,
                                               const CmpiManagedInstance* protocolController,
                                               const KDV_SASStorageVolume* volume);
    ~KDV_SASSCSIProtocolControllerStorageVolume() override;

    CmpiCpp::CmpiInstance getInstance() override;

private:
    InstanceLog _log;
    [[maybe_unused]] const CmpiManagedInstance* _protocolController;
    const KDV_SASStorageVolume* _volume;
};

} // namespace KDV
