// The array system that runs on an adapter. Made for every HBA; owned by the collection, used under the provider's
// lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASPhysicalPackageArraySystem final : public CIM_Dependency {
public:
    KDV_SASPhysicalPackageArraySystem(const Logger& logger, const std::string& nameSpace,
                                      const CmpiManagedInstance* package, const CmpiManagedInstance* arraySystem);
    ~KDV_SASPhysicalPackageArraySystem() override;

private:
    InstanceLog _log;
};

} // namespace KDV
