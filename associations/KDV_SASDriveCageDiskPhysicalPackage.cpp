#include "associations/KDV_SASDriveCageDiskPhysicalPackage.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASDriveCageDiskPhysicalPackage";
}

KDV_SASDriveCageDiskPhysicalPackage::KDV_SASDriveCageDiskPhysicalPackage(const Logger& logger,
                                                                         const std::string& nameSpace,
                                                                         const CmpiManagedInstance* driveCage,
                                                                         const CmpiManagedInstance* package)
    : CIM_SystemDevice(nameSpace, className, driveCage, package), _log(logger, className)
{
}

KDV_SASDriveCageDiskPhysicalPackage::~KDV_SASDriveCageDiskPhysicalPackage() = default;

} // namespace KDV
