#include "associations/KDV_SASArraySystemArrayController.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemArrayController";
}

KDV_SASArraySystemArrayController::KDV_SASArraySystemArrayController(const Logger& logger, const std::string& nameSpace,
                                                                     const CmpiManagedInstance* arraySystem,
                                                                     const CmpiManagedInstance* arrayController)
    : CIM_SystemDevice(nameSpace, className, arraySystem, arrayController), _log(logger, className)
{
}

KDV_SASArraySystemArrayController::~KDV_SASArraySystemArrayController() = default;

} // namespace KDV
