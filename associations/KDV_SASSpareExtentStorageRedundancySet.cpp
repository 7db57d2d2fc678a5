#include "associations/KDV_SASSpareExtentStorageRedundancySet.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSpareExtentStorageRedundancySet";
}

KDV_SASSpareExtentStorageRedundancySet::KDV_SASSpareExtentStorageRedundancySet(const Logger& logger,
                                                                               const std::string& nameSpace,
                                                                               const CmpiManagedInstance* extent,
                                                                               const CmpiManagedInstance* redundancySet)
    : CIM_Dependency(nameSpace, className, extent, redundancySet), _log(logger, className)
{
}

KDV_SASSpareExtentStorageRedundancySet::~KDV_SASSpareExtentStorageRedundancySet() = default;

} // namespace KDV
