// A spare disk's capacity and the redundancy set that it stands by for. Made for every physical drive that a logical
// drive names as a spare; owned by the collection, used under the provider's lock.
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
