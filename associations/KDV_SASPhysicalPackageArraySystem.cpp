#include "associations/KDV_SASPhysicalPackageArraySystem.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPhysicalPackageArraySystem";
}

KDV_SASPhysicalPackageArraySystem::KDV_SASPhysicalPackageArraySystem(const Logger& logger, const std::string& nameSpace,
                                                                     const CmpiManagedInstance* package,
                                                                     const CmpiManagedInstance* arraySystem)
    : CIM_Dependency(nameSpace, className, package, arraySystem), _log(logger, className)
{
}

KDV_SASPhysicalPackageArraySystem::~KDV_SASPhysicalPackageArraySystem() = default;

} // namespace KDV
