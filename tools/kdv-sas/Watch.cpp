#include "kdv-sas/Watch.h"

#include "kdv-sas/PathText.h"

#include <iostream>
#include <unistd.h>

namespace KdvSas {
namespace {

using Cim::Path;

constexpr int invalidNameSpace = 3;
const std::string alertClass = "KDV_SASIndication";
const std::string query = "SELECT * FROM KDV_SASIndication";

std::string uniqueName(const char* what)
{
    char host[256] = "";
    ::gethostname(host, sizeof host - 1);
    return "kdv-sas:" + std::string(what) + ":" + host + ":" + std::to_string(::getpid());
}

std::string severityWord(const std::string& severity)
{
    static const char* const words[] = {"unknown", "other", "information", "warning",
                                        "minor",   "major", "critical",    "fatal"};
    return severity.size() == 1 && severity[0] >= '0' && severity[0] <= '7' ? words[severity[0] - '0'] : severity;
}

// "20261121120000.000000+000" as a person writes it.
std::string timeText(const std::string& cimTime)
{
    if (cimTime.size() < 14) return cimTime;
    return cimTime.substr(0, 4) + "-" + cimTime.substr(4, 2) + "-" + cimTime.substr(6, 2) + " " + cimTime.substr(8, 2) +
           ":" + cimTime.substr(10, 2) + ":" + cimTime.substr(12, 2);
}

} // namespace

Subscription::Subscription(Cim::Connection& connection, const std::string& url) : _connection(connection)
{
    findInterop();
    try {
        const Path filterPath = filter();
        const Path destination =
            create("CIM_ListenerDestinationCIMXML", {{"Name", "string", uniqueName("destination")},
                                                     {"Destination", "string", url},
                                                     {"PersistenceType", "uint16", "3"}}); // transient: ends with us
        create("CIM_IndicationSubscription",
               {{"Filter", "reference", "", &filterPath}, {"Handler", "reference", "", &destination}});
    } catch (...) {
        removeAll();
        throw;
    }
}

Subscription::~Subscription() { removeAll(); }

void Subscription::findInterop()
{
    for (const char* name : {"interop", "root/interop", "root/PG_InterOp"}) {
        try {
            _connection.send(Cim::enumerateInstanceNames(name, "CIM_IndicationFilter"));
            _interop = name;
            return;
        } catch (const Cim::Refused& refused) {
            if (refused.code() != invalidNameSpace) throw;
        }
    }
    throw Cim::Refused(invalidNameSpace, "the server has no interop namespace, so it takes no subscriptions");
}

Path Subscription::filter()
{
    for (const Cim::Instance& filter :
         _connection.send(Cim::enumerateInstances(_interop, "CIM_IndicationFilter")).instances)
        if (Cim::sameName(filter.text("Query"), query)) {
            Path path = filter.path;
            path.nameSpace = _interop;
            return path;
        }
    return create("CIM_IndicationFilter", {{"Name", "string", uniqueName("filter")},
                                           {"Query", "string", query},
                                           {"QueryLanguage", "string", "WQL"},
                                           {"SourceNamespace", "string", "root/vnr"}});
}

Path Subscription::create(const std::string& className, const std::vector<Cim::NewProperty>& properties)
{
    const Cim::Reply reply = _connection.send(Cim::createInstance(_interop, className, properties));
    if (reply.paths.empty()) throw Cim::Unreachable("the server made a " + className + " and did not say which");
    Path path = reply.paths.front();
    path.nameSpace = _interop;
    _made.push_back(path);
    return path;
}

void Subscription::removeAll() noexcept
{
    for (; !_made.empty(); _made.pop_back()) {
        try {
            _connection.send(Cim::deleteInstance(_interop, _made.back()));
        } catch (const std::exception& error) {
            std::cerr << "kdv-sas: cannot remove " << pathText(_made.back()) << ": " << error.what() << "\n";
        }
    }
}

std::string alertLine(const Cim::Instance& alert)
{
    std::string line = timeText(alert.text("IndicationTime")) + "  " + severityWord(alert.text("PerceivedSeverity")) +
                       "  event " + alert.text("EventID") + "  " + alert.text("Summary");
    const std::string location = alert.text("HWLogicalLocation");
    if (!location.empty()) line += " at " + location;
    const std::string serial = alert.text("HWSerialNumber");
    if (!serial.empty()) line += " (" + alert.text("DeviceModel") + ", serial " + serial + ")";
    if (location.empty() && serial.empty()) line += ": " + alert.text("AlertingManagedElement");
    return line;
}

} // namespace KdvSas
