#include "associations/KDV_SASStorageSpecificCollectionArraySystem.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageSpecificCollectionArraySystem";
}

KDV_SASStorageSpecificCollectionArraySystem::KDV_SASStorageSpecificCollectionArraySystem(
    const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* arraySystem,
    const CmpiManagedInstance* collection)
    : CIM_MemberOfCollection(nameSpace, className, arraySystem, collection), _log(logger, className)
{
}

KDV_SASStorageSpecificCollectionArraySystem::~KDV_SASStorageSpecificCollectionArraySystem() = default;

} // namespace KDV
