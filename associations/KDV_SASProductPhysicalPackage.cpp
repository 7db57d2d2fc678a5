#include "associations/KDV_SASProductPhysicalPackage.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASProductPhysicalPackage";
}

KDV_SASProductPhysicalPackage::KDV_SASProductPhysicalPackage(const Logger& logger, const std::string& nameSpace,
                                                             const CmpiManagedInstance* product,
                                                             const CmpiManagedInstance* package)
    : CIM_SystemDevice(nameSpace, className, product, package), _log(logger, className)
{
}

KDV_SASProductPhysicalPackage::~KDV_SASProductPhysicalPackage() = default;

} // namespace KDV
