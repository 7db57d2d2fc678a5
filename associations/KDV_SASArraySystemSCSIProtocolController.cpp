#include "associations/KDV_SASArraySystemSCSIProtocolController.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemSCSIProtocolController";
}

KDV_SASArraySystemSCSIProtocolController::KDV_SASArraySystemSCSIProtocolController(
    const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* arraySystem,
    const CmpiManagedInstance* protocolController)
    : CIM_SystemDevice(nameSpace, className, arraySystem, protocolController), _log(logger, className)
{
}

KDV_SASArraySystemSCSIProtocolController::~KDV_SASArraySystemSCSIProtocolController() = default;

} // namespace KDV
