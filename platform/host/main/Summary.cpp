#include "Summary.h"

#include "broker/RequestScope.h"

#include <cstdlib>
#include <map>
#include <ostream>

namespace KDV::Host {

namespace {

// Counts the instances of one class without keeping any.
class Count : public ResultSink {
public:
    std::size_t count = 0;
    bool instance(const InstanceObject&) override { return ++count != 0; }
    bool objectPath(const PathObject&) override { return ++count != 0; }
    bool data(const CMPIData&) override { return true; }
};

std::size_t instancesOf(CimHost& host, const ClassInfo& classInfo)
{
    const std::string& nameSpace = classInfo.nameSpace().name();
    RequestScope scope(host.broker(), nameSpace);
    Count sink;
    host.router().enumerateInstanceNames(&scope.context(), scope.path(nameSpace, classInfo.name()), sink);
    return sink.count;
}

struct Served {
    unsigned instances = 0;
    unsigned associations = 0;
    unsigned others = 0;
};

void writeNameSpaces(std::ostream& out, CimHost& host)
{
    std::map<std::string, Served> byNameSpace;
    for (const auto& nameSpace : host.repository().namespaces())
        for (const auto& classInfo : nameSpace->classes()) {
            const ProviderRoute* route = host.providers().find(*classInfo);
            if (!route) continue;
            Served& served = byNameSpace[nameSpace->name()];
            ++(classInfo->isAssociation() ? served.associations : route->instances ? served.instances : served.others);
        }
    for (const auto& [name, served] : byNameSpace)
        out << "  namespace " << name << ": " << served.instances << " instance classes, " << served.associations
            << " associations\n";
}

// The classes that show what machine this is. False when there is a provider for adapters but no adapter.
bool writeMachine(std::ostream& out, CimHost& host)
{
    const std::pair<const char*, const char*> shown[] = {{"KDV_SASArraySystem", "array systems"},
                                                         {"KDV_SASStorageEnclosure", "enclosures"},
                                                         {"KDV_SASDiskDrive", "disks"},
                                                         {"KDV_SASStorageVolume", "volumes"}};
    const char* separator = "  serving ";
    bool anyAdapter = true;
    for (const auto& nameSpace : host.repository().namespaces())
        for (const auto& [className, words] : shown) {
            const ClassInfo* classInfo = nameSpace->find(className);
            if (!classInfo || !host.providers().find(*classInfo)) continue;
            const std::size_t count = instancesOf(host, *classInfo);
            if (className == shown[0].first) anyAdapter = count > 0;
            out << separator << count << ' ' << words;
            separator = ", ";
        }
    if (separator[0] == ',') out << '\n';
    return anyAdapter;
}

} // namespace

std::string hostPort(const Endpoint& endpoint)
{
    const bool bracket = endpoint.address.find(':') != endpoint.address.npos;
    return (bracket ? "[" + endpoint.address + "]" : endpoint.address) + ":" + endpoint.port;
}

void writeSummary(std::ostream& out, CimHost& host, const std::vector<Endpoint>& endpoints,
                  const std::string& alertStream)
{
    for (const Endpoint& endpoint : endpoints)
        out << "kdv-cimhost listens at http://" << hostPort(endpoint) << "/cimom\n";
    writeNameSpaces(out, host);
    const bool anyAdapter = writeMachine(out, host);
    if (const char* scenario = std::getenv("KDV_SAS_SCENARIO"); scenario && *scenario)
        out << "  scenario " << scenario << '\n';
    else if (!anyAdapter)
        out << "  no SAS adapter was found: is its driver loaded (ls /sys/class/scsi_host, lspci -k)? "
               "KDV_SAS_SCENARIO chooses a scenario instead\n";
    else
        out << "  no scenario chosen: the SAS adapters of this machine; KDV_SAS_SCENARIO names another\n";
    if (!endpoints.empty()) {
        const std::string url = "http://" + hostPort(endpoints.front()) + "/root/vnr";
        if (!alertStream.empty()) out << "  alerts: subscribe in interop, or follow " << alertStream << '\n';
        out << "ask it, for example:\n"
            << "  wbemcli ei '" << url << ":KDV_SASArraySystem'\n"
            << "  wbemcli ein '" << url << ":CIM_DiskDrive'\n"
            << "  wbemcli ecn '" << url << "'\n";
    }
    out << "ends on SIGTERM or Ctrl-C\n";
    out.flush();
}

} // namespace KDV::Host
