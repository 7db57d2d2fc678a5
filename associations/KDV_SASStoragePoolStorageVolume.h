// A volume and the pool that it takes its space from. Made for every logical drive; owned by the collection, used
// under the provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "instances/KDV_SASStorageVolume.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStoragePoolStorageVolume final : public CIM_Dependency {
public:
    KDV_SASStoragePoolStorageVolume(const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* pool,
                                    const KDV_SASStorageVolume* volume);
    ~KDV_SASStoragePoolStorageVolume() override;

    CmpiCpp::CmpiInstance getInstance() override;

private:
    InstanceLog _log;
    [[maybe_unused]] const CmpiManagedInstance* _pool;
    const KDV_SASStorageVolume* _volume;
};

} // namespace KDV
