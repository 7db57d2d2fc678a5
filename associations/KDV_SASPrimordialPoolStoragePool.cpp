#include "associations/KDV_SASPrimordialPoolStoragePool.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPrimordialPoolStoragePool";
}

KDV_SASPrimordialPoolStoragePool::KDV_SASPrimordialPoolStoragePool(const Logger& logger, const std::string& nameSpace,
                                                                   const CmpiManagedInstance* pool,
                                                                   const KDV_SASStoragePool* storagePool)
    : CIM_Dependency(nameSpace, className, pool, storagePool), _log(logger, className), _pool(pool),
      _storagePool(storagePool)
{
}

KDV_SASPrimordialPoolStoragePool::~KDV_SASPrimordialPoolStoragePool() = default;

CmpiInstance KDV_SASPrimordialPoolStoragePool::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(CIM_Dependency::getInstance());
    row.uint64("SpaceConsumed", _storagePool->totalManagedSpace());
    return row.instance();
}

} // namespace KDV
