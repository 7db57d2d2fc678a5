#include "cmpicpp/CmpiMBService.h"

#include "cmpicpp/BrokerObject.h"

namespace CmpiCpp {

CmpiMBService::CmpiMBService(const CMPIBroker* broker, const Logger& logger) : _broker(broker), _logger(logger) {}

CmpiStatus CmpiMBService::deliverIndication(const CmpiContext& context, const CmpiName& nameSpace,
                                            const CmpiInstance& indication)
{
    if (!_broker || !_broker->bft || !_broker->bft->deliverIndication)
        return CmpiStatus(CMPI_RC_ERR_NOT_SUPPORTED, "the broker delivers no indications");
    const CMPIStatus status =
        _broker->bft->deliverIndication(_broker, context.raw(), nameSpace.c_str(), indication.raw());
    if (status.rc == CMPI_RC_OK) return CmpiStatus(CMPI_RC_OK, "delivered");
    const CmpiStatus refusal(status.rc, textOrEmpty(status.msg));
    _logger.info("deliverIndication: %s", refusal.str());
    return refusal;
}

} // namespace CmpiCpp
