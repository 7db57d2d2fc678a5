// The firmware that a disk drive runs. Made for every physical drive; owned by the collection, used under the
// provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASDiskDriveDiskDriveFirmware final : public CIM_Dependency {
public:
    KDV_SASDiskDriveDiskDriveFirmware(const Logger& logger, const std::string& nameSpace,
                                      const CmpiManagedInstance* firmware, const CmpiManagedInstance* diskDrive);
    ~KDV_SASDiskDriveDiskDriveFirmware() override;

    CmpiCpp::CmpiInstance getInstance() override;

private:
    InstanceLog _log;
    [[maybe_unused]] const CmpiManagedInstance* _firmware;
    [[maybe_unused]] const CmpiManagedInstance* _diskDrive;
};

} // namespace KDV
