// Services of the broker that a provider asks for: so far the delivery of an indication. Holds the broker and a copy of
// the logger; cheap to make. deliverIndication never throws for a refusal: it gives the broker's code and text.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiContext.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiStatus.h"
#include "cmpicpp/Export.h"
#include "logger/Logger.h"

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiMBService {
public:
    CmpiMBService(const CMPIBroker* broker, const Logger& logger);
    CmpiStatus deliverIndication(const CmpiContext& context, const CmpiName& nameSpace, const CmpiInstance& indication);

private:
    const CMPIBroker* _broker;
    Logger _logger;
};

} // namespace CmpiCpp
