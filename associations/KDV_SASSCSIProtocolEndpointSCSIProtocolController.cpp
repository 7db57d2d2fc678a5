#include "associations/KDV_SASSCSIProtocolEndpointSCSIProtocolController.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSCSIProtocolEndpointSCSIProtocolController";
}

using Link = KDV_SASSCSIProtocolEndpointSCSIProtocolController;

Link::KDV_SASSCSIProtocolEndpointSCSIProtocolController(const Logger& logger, const std::string& nameSpace,
                                                        const CmpiManagedInstance* endpoint,
                                                        const CmpiManagedInstance* protocolController)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className), _endpoint(endpoint),
      _protocolController(protocolController)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASSCSIProtocolEndpointSCSIProtocolController() = default;

TwoEnds Link::ends() const { return {{"AvailableSAP", _endpoint}, {"ManagedElement", _protocolController}}; }

CmpiObjectPath Link::getPath() const
{
    _log.info("getPath()");
    return ends().path(_nameSpace, className);
}

CmpiInstance Link::getInstance()
{
    _log.info("getInstance()");
    return ends().rows(*this).instance();
}

CmpiObjectPath Link::getAssociatedPath(const CmpiObjectPath& given) const
{
    _log.info("getAssociatedPath()");
    return ends().other(given);
}

} // namespace KDV
