#include "RecordingProvider.h"

#include "broker/RequestScope.h"

#include <utility>

namespace KDV::Host {

struct RecordingProvider::Functions {
    static RecordingProvider& of(CMPIIndicationMI* table)
    {
        return *static_cast<RecordingProvider*>(const_cast<void*>(table->hdl));
    }
    static std::string about(const CMPISelectExp* filter, const char* className, const CMPIObjectPath* path)
    {
        CMPIStatus status{CMPI_RC_OK, nullptr};
        const CMPIString* query = filter->ft->getString(filter, &status);
        const std::string text = query ? query->ft->getCharPtr(query, nullptr) : "no query";
        return std::string(className) + " as " + std::string(PathObject::of(path).nameSpace) + ':' +
               std::string(PathObject::of(path).className) + (text.find("FROM") == std::string::npos ? " " + text : "");
    }
    static CMPIStatus cleanup(CMPIIndicationMI*, const CMPIContext*, CMPIBoolean) { return {CMPI_RC_OK, nullptr}; }
    static CMPIStatus authorize(CMPIIndicationMI* self, const CMPIContext*, const CMPISelectExp* filter,
                                const char* className, const CMPIObjectPath* path, const char* owner)
    {
        return of(self).record("authorize",
                               "authorize " + about(filter, className, path) + " for " + (owner ? owner : "nobody"));
    }
    static CMPIStatus poll(CMPIIndicationMI* self, const CMPIContext*, const CMPIResult* result,
                           const CMPISelectExp* filter, const char* className, const CMPIObjectPath* path)
    {
        return of(self).record("poll", "poll " + about(filter, className, path) + (result ? "" : " without result"));
    }
    static CMPIStatus pollBefore(CMPIIndicationMI* self, const CMPIContext*, const CMPISelectExp* filter,
                                 const char* className, const CMPIObjectPath* path)
    {
        return of(self).record("poll", "old poll " + about(filter, className, path));
    }
    static CMPIStatus activate(CMPIIndicationMI* self, const CMPIContext*, const CMPISelectExp* filter,
                               const char* className, const CMPIObjectPath* path, CMPIBoolean first)
    {
        const std::string call = "activate " + about(filter, className, path) + (first ? " first" : "");
        const CMPIStatus status = of(self).record("activate", call);
        of(self).whenActivated();
        return status;
    }
    static CMPIStatus deactivate(CMPIIndicationMI* self, const CMPIContext*, const CMPISelectExp* filter,
                                 const char* className, const CMPIObjectPath* path, CMPIBoolean last)
    {
        return of(self).record("deactivate", "deactivate " + about(filter, className, path) + (last ? " last" : ""));
    }
    static CMPIStatus enable(CMPIIndicationMI* self, const CMPIContext*)
    {
        const CMPIStatus status = of(self).record("enable", "enable");
        of(self).whenEnabled();
        return status;
    }
    static CMPIStatus disable(CMPIIndicationMI* self, const CMPIContext*)
    {
        return of(self).record("disable", "disable");
    }
};

RecordingProvider::RecordingProvider(Broker& broker, CMPIVersion version) : _broker(broker)
{
    _functions.ftVersion = version;
    _functions.miVersion = version;
    _functions.miName = "Recording";
    _functions.cleanup = Functions::cleanup;
    _functions.authorizeFilter = Functions::authorize;
    _functions.mustPoll = Functions::poll;
    if (version < CMPIVersion210)
        _functions.mustPoll =
            reinterpret_cast<decltype(_functions.mustPoll)>(reinterpret_cast<void (*)()>(&Functions::pollBefore));
    _functions.activateFilter = Functions::activate;
    _functions.deActivateFilter = Functions::deactivate;
    _functions.enableIndications = Functions::enable;
    _functions.disableIndications = Functions::disable;
    _table = {this, &_functions};
}

CMPIStatus RecordingProvider::record(const std::string& function, const std::string& call)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _calls.push_back(call);
    if (function != _refused) return {CMPI_RC_OK, nullptr};
    CMPIStatus status{CMPI_RC_OK, nullptr};
    return {_rc, _broker.cmpi()->eft->newString(_broker.cmpi(), "not today", &status)};
}

std::vector<std::string> RecordingProvider::calls()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return std::exchange(_calls, {});
}

CMPIrc RecordingProvider::deliver(const std::string& eventId, unsigned severity, const std::string& nameSpace,
                                  const std::string& className)
{
    const CMPIBroker* broker = _broker.cmpi();
    RequestScope scope(_broker, nameSpace);
    InstanceObject& alert = scope.instance(scope.path(nameSpace, className));
    const auto text = [&](const char* name, const std::string& value) {
        alert.ft->setProperty(&alert, name, reinterpret_cast<const CMPIValue*>(value.c_str()), CMPI_chars);
    };
    CMPIValue value{};
    value.uint16 = static_cast<CMPIUint16>(severity);
    text("EventID", eventId);
    text("Summary", "something happened");
    text("AlertingManagedElement", "root/vnr:KDV_SASDiskDrive.DeviceID=\"7\"");
    text("SequenceContext", "the provider's own");
    alert.ft->setProperty(&alert, "PerceivedSeverity", &value, CMPI_uint16);
    return broker->bft->deliverIndication(broker, &scope.context(), nameSpace.c_str(), &alert).rc;
}

} // namespace KDV::Host
