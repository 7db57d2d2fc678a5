// The pool that volumes are made from and the primordial pool that it takes its space from. Made for every HBA;
// owned by the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "instances/KDV_SASStoragePool.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASPrimordialPoolStoragePool final : public CIM_Dependency {
public:
    KDV_SASPrimordialPoolStoragePool(const Logger& logger, const std::string& nameSpace,
                                     const CmpiManagedInstance* pool, const KDV_SASStoragePool* storagePool);
    ~KDV_SASPrimordialPoolStoragePool() override;

    CmpiCpp::CmpiInstance getInstance() override;

private:
    InstanceLog _log;
    [[maybe_unused]] const CmpiManagedInstance* _pool;
    const KDV_SASStoragePool* _storagePool;
};

} // namespace KDV
