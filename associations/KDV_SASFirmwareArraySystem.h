// The firmware that an array system runs. Made for every HBA; owned by the collection, used under the provider's
// lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASFirmwareArraySystem final : public CIM_Dependency {
public:
    KDV_SASFirmwareArraySystem(const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* firmware,
                               const CmpiManagedInstance* arraySystem);
    ~KDV_SASFirmwareArraySystem() override;

    CmpiCpp::CmpiInstance getInstance() override;

private:
    InstanceLog _log;
    [[maybe_unused]] const CmpiManagedInstance* _firmware;
    [[maybe_unused]] const CmpiManagedInstance* _arraySystem;
};

} // namespace KDV
