#include "common/CIMAlertIndication.h"

#include "cmpicpp/CmpiArray.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/KDVUtil.h"
#include "common/TextArray.h"

#include <atomic>
#include <chrono>
#include <unistd.h>
#include <utility>

using namespace CmpiCpp;

namespace KDV {
namespace {

std::uint64_t microsecondsNow()
{
    using namespace std::chrono;
    return static_cast<std::uint64_t>(duration_cast<microseconds>(system_clock::now().time_since_epoch()).count());
}

// Unique across restarts, processes and alerts of one microsecond.
std::string newIdentifier(const std::string& className, const std::string& host, std::uint64_t time)
{
    static std::atomic<unsigned> count{0};
    return "VNR:" + className + "-" + host + "-" + std::to_string(::getpid()) + "-" + std::to_string(time) + "-" +
           std::to_string(++count);
}

CmpiInstance emptyInstance(const std::string& className, const std::string& nameSpace)
{
    const CMPIBroker* broker = KDVUtil::getBroker();
    return makeCmpiInstance(broker, makeCmpiObjectPath(broker, nameSpace, className));
}

} // namespace

CIMAlertIndication::CIMAlertIndication(const Logger& logger, const std::string& className, const std::string& nameSpace,
                                       int perceivedSeverity)
    : _logger(logger), _instance(emptyInstance(className, nameSpace))
{
    const std::string host = KDVUtil::getHostName();
    const std::uint64_t now = microsecondsNow();
    add("IndicationIdentifier", newIdentifier(className, host, now));
    _instance.addDateTimeProperty("IndicationTime", KDVUtil::getBroker(), now);
    add("SystemName", host);
    add("PerceivedSeverity", static_cast<std::uint16_t>(perceivedSeverity));
}

CIMAlertIndication::~CIMAlertIndication() = default;

void CIMAlertIndication::add(const char* name, const std::string& text) { _instance.addProperty(name, text); }

void CIMAlertIndication::add(const char* name, std::uint16_t value) { _instance.addProperty(name, value); }

void CIMAlertIndication::setDescription(const std::string& text) { add("Description", text); }

void CIMAlertIndication::setAlertingManagedElement(const std::string& path) { add("AlertingManagedElement", path); }

void CIMAlertIndication::setAlertingElementFormat(int format)
{
    add("AlertingElementFormat", static_cast<std::uint16_t>(format));
}

void CIMAlertIndication::setAlertType(int type) { add("AlertType", static_cast<std::uint16_t>(type)); }

void CIMAlertIndication::setEventID(const std::string& id) { add("EventID", id); }

void CIMAlertIndication::setProviderName(const std::string& name) { add("ProviderName", name); }

void CIMAlertIndication::setRecommendedActions(const std::string& actions)
{
    _instance.addProperty("RecommendedActions", textArray({actions}));
}

void CIMAlertIndication::setSystemCreationClassName(const std::string& name) { add("SystemCreationClassName", name); }

void CIMAlertIndication::setProbableCause(std::uint16_t cause) { add("ProbableCause", cause); }

void CIMAlertIndication::setProbableCauseDescription(const std::string& text) { add("ProbableCauseDescription", text); }

void CIMAlertIndication::setMessage(const std::string& owningEntity, const std::string& messageId,
                                    const std::vector<std::string>& arguments)
{
    add("OwningEntity", owningEntity);
    add("MessageID", messageId);
    _instance.addProperty("MessageArguments", textArray(arguments));
}

CmpiInstance CIMAlertIndication::getInstance() { return std::move(_instance); }

} // namespace KDV
