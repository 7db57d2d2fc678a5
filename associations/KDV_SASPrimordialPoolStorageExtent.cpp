#include "associations/KDV_SASPrimordialPoolStorageExtent.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPrimordialPoolStorageExtent";
}

KDV_SASPrimordialPoolStorageExtent::KDV_SASPrimordialPoolStorageExtent(const Logger& logger,
                                                                       const std::string& nameSpace,
                                                                       const CmpiManagedInstance* pool,
                                                                       const CmpiManagedInstance* extent)
    : CIM_SystemDevice(nameSpace, className, pool, extent), _log(logger, className)
{
}

KDV_SASPrimordialPoolStorageExtent::~KDV_SASPrimordialPoolStorageExtent() = default;

} // namespace KDV
