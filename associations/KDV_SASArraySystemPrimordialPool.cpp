#include "associations/KDV_SASArraySystemPrimordialPool.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemPrimordialPool";
}

KDV_SASArraySystemPrimordialPool::KDV_SASArraySystemPrimordialPool(const Logger& logger, const std::string& nameSpace,
                                                                   const CmpiManagedInstance* arraySystem,
                                                                   const CmpiManagedInstance* pool)
    : CIM_SystemDevice(nameSpace, className, arraySystem, pool), _log(logger, className)
{
}

KDV_SASArraySystemPrimordialPool::~KDV_SASArraySystemPrimordialPool() = default;

} // namespace KDV
