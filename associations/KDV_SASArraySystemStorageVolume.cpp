#include "associations/KDV_SASArraySystemStorageVolume.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemStorageVolume";
}

KDV_SASArraySystemStorageVolume::KDV_SASArraySystemStorageVolume(const Logger& logger, const std::string& nameSpace,
                                                                 const CmpiManagedInstance* arraySystem,
                                                                 const CmpiManagedInstance* volume)
    : CIM_SystemDevice(nameSpace, className, arraySystem, volume), _log(logger, className)
{
}

KDV_SASArraySystemStorageVolume::~KDV_SASArraySystemStorageVolume() = default;

} // namespace KDV
