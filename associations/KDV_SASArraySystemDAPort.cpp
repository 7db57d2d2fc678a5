#include "associations/KDV_SASArraySystemDAPort.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemDAPort";
}

KDV_SASArraySystemDAPort::KDV_SASArraySystemDAPort(const Logger& logger, const std::string& nameSpace,
                                                   const CmpiManagedInstance* arraySystem,
                                                   const CmpiManagedInstance* port)
    : CIM_SystemDevice(nameSpace, className, arraySystem, port), _log(logger, className)
{
}

KDV_SASArraySystemDAPort::~KDV_SASArraySystemDAPort() = default;

} // namespace KDV
