#include "associations/KDV_SASStoragePoolStorageExtent.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStoragePoolStorageExtent";
}

KDV_SASStoragePoolStorageExtent::KDV_SASStoragePoolStorageExtent(const Logger& logger, const std::string& nameSpace,
                                                                 const CmpiManagedInstance* pool,
                                                                 const CmpiManagedInstance* extent)
    : CIM_SystemDevice(nameSpace, className, pool, extent), _log(logger, className)
{
}

KDV_SASStoragePoolStorageExtent::~KDV_SASStoragePoolStorageExtent() = default;

} // namespace KDV
