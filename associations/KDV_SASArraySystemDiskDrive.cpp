#include "associations/KDV_SASArraySystemDiskDrive.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemDiskDrive";
}

KDV_SASArraySystemDiskDrive::KDV_SASArraySystemDiskDrive(const Logger& logger, const std::string& nameSpace,
                                                         const CmpiManagedInstance* arraySystem,
                                                         const CmpiManagedInstance* diskDrive)
    : CIM_SystemDevice(nameSpace, className, arraySystem, diskDrive), _log(logger, className)
{
}

KDV_SASArraySystemDiskDrive::~KDV_SASArraySystemDiskDrive() = default;

} // namespace KDV
