#include "associations/KDV_SASDiskPhysicalPackageDiskDrive.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASDiskPhysicalPackageDiskDrive";
}

KDV_SASDiskPhysicalPackageDiskDrive::KDV_SASDiskPhysicalPackageDiskDrive(const Logger& logger,
                                                                         const std::string& nameSpace,
                                                                         const CmpiManagedInstance* package,
                                                                         const CmpiManagedInstance* diskDrive)
    : CIM_Dependency(nameSpace, className, package, diskDrive), _log(logger, className)
{
}

KDV_SASDiskPhysicalPackageDiskDrive::~KDV_SASDiskPhysicalPackageDiskDrive() = default;

} // namespace KDV
