// A spare disk's capacity and the redundancy set that it stands by for. Made for a physical drive that is
// used as a spare, with the first logical drive that names it, when that has a redundancy set; owned by the
// collection, used under the provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASSpareExtentStorageRedundancySet final : public CIM_Dependency {
public:
    KDV_SASSpareExtentStorageRedundancySet(const Logger& logger, const std::string& nameSpace,
                                           const CmpiManagedInstance* extent, const CmpiManagedInstance* redundancySet);
    ~KDV_SASSpareExtentStorageRedundancySet() override;

private:
    InstanceLog _log;
};

} // namespace KDV
