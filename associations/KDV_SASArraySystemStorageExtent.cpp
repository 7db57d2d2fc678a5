#include "associations/KDV_SASArraySystemStorageExtent.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemStorageExtent";
}

KDV_SASArraySystemStorageExtent::KDV_SASArraySystemStorageExtent(const Logger& logger, const std::string& nameSpace,
                                                                 const CmpiManagedInstance* arraySystem,
                                                                 const CmpiManagedInstance* extent)
    : CIM_SystemDevice(nameSpace, className, arraySystem, extent), _log(logger, className)
{
}

KDV_SASArraySystemStorageExtent::~KDV_SASArraySystemStorageExtent() = default;

} // namespace KDV
