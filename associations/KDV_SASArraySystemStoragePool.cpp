#include "associations/KDV_SASArraySystemStoragePool.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemStoragePool";
}

KDV_SASArraySystemStoragePool::KDV_SASArraySystemStoragePool(const Logger& logger, const std::string& nameSpace,
                                                             const CmpiManagedInstance* arraySystem,
                                                             const CmpiManagedInstance* pool)
    : CIM_SystemDevice(nameSpace, className, arraySystem, pool), _log(logger, className)
{
}

KDV_SASArraySystemStoragePool::~KDV_SASArraySystemStoragePool() = default;

} // namespace KDV
