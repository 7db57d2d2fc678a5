#include "associations/KDV_SASStorageExtentStorageVolume.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageExtentStorageVolume";
}

KDV_SASStorageExtentStorageVolume::KDV_SASStorageExtentStorageVolume(const Logger& logger, const std::string& nameSpace,
                                                                     const CmpiManagedInstance* extent,
                                                                     const CmpiManagedInstance* volume)
    : CIM_Dependency(nameSpace, className, extent, volume), _log(logger, className)
{
}

KDV_SASStorageExtentStorageVolume::~KDV_SASStorageExtentStorageVolume() = default;

} // namespace KDV
