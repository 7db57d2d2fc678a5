// A member disk's capacity and the volume that is built on it. Made for a physical drive that is used as
// a member, with the first logical drive that names it; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageExtentStorageVolume final : public CIM_Dependency {
public:
    KDV_SASStorageExtentStorageVolume(const Logger& logger, const std::string& nameSpace,
                                      const CmpiManagedInstance* extent, const CmpiManagedInstance* volume);
    ~KDV_SASStorageExtentStorageVolume() override;

private:
    InstanceLog _log;
};

} // namespace KDV
