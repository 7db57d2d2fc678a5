#include "associations/KDV_SASStorageEnclosureDriveCage.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageEnclosureDriveCage";
}

KDV_SASStorageEnclosureDriveCage::KDV_SASStorageEnclosureDriveCage(const Logger& logger, const std::string& nameSpace,
                                                                   const CmpiManagedInstance* enclosure,
                                                                   const CmpiManagedInstance* driveCage)
    : CIM_SystemDevice(nameSpace, className, enclosure, driveCage), _log(logger, className)
{
}

KDV_SASStorageEnclosureDriveCage::~KDV_SASStorageEnclosureDriveCage() = default;

} // namespace KDV
