#include "associations/KDV_SASDAPortSCSIProtocolEndpoint.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASDAPortSCSIProtocolEndpoint";
}

KDV_SASDAPortSCSIProtocolEndpoint::KDV_SASDAPortSCSIProtocolEndpoint(const Logger& logger, const std::string& nameSpace,
                                                                     const CmpiManagedInstance* port,
                                                                     const CmpiManagedInstance* endpoint)
    : CIM_Dependency(nameSpace, className, port, endpoint), _log(logger, className)
{
}

KDV_SASDAPortSCSIProtocolEndpoint::~KDV_SASDAPortSCSIProtocolEndpoint() = default;

} // namespace KDV
