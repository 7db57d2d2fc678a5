#include "AlertsFixture.h"

#include "hosttest/CimClient.h"

#include <iostream>

namespace KDV::Host::Test {

namespace {

constexpr const char* interop = "interop";

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char c : text)
        result += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
    return result;
}

std::string unescaped(std::string text)
{
    const std::pair<std::string, std::string> entities[] = {{"&quot;", "\""}, {"&apos;", "'"}, {"&lt;", "<"},
                                                            {"&gt;", ">"},    {"&#34;", "\""}, {"&amp;", "&"}};
    for (const auto& [entity, character] : entities)
        for (std::size_t at = 0; (at = text.find(entity, at)) != text.npos; at += character.size())
            text.replace(at, entity.size(), character);
    return text;
}

// "//host/root/vnr:Class.Key=..." -> "Class identifying-key". Fails the test if it is no such path.
std::string elementOf(const std::string& path)
{
    const std::size_t nameSpace = path.find("root/vnr:");
    if (nameSpace == path.npos) {
        ADD_FAILURE() << "an alert's element without its namespace: " << path;
        return path;
    }
    const std::size_t begin = nameSpace + 9;
    const std::string ofClass = path.substr(begin, path.find('.', begin) - begin);
    for (const char* key : {",DeviceID=\"", ",Name=\""})
        if (const std::string found = between(path, key, "\""); !found.empty()) return ofClass + ' ' + found;
    ADD_FAILURE() << "an alert's element without a key: " << path;
    return path;
}

std::string reference(const std::string& name, const std::string& to)
{
    return "<PROPERTY.REFERENCE NAME=\"" + name + "\"><VALUE.REFERENCE>" + to +
           "</VALUE.REFERENCE></PROPERTY.REFERENCE>";
}

} // namespace

bool operator==(const Alert& left, const Alert& right)
{
    return left.event == right.event && left.element == right.element && left.severity == right.severity;
}

std::ostream& operator<<(std::ostream& out, const Alert& alert)
{
    return out << '{' << alert.event << ' ' << alert.element << " severity " << alert.severity << '}';
}

std::vector<Alert> alertsOf(const std::vector<TestListener::Message>& messages)
{
    std::vector<Alert> alerts;
    for (const TestListener::Message& message : messages)
        alerts.push_back({message.value("EventID"), elementOf(unescaped(message.value("AlertingManagedElement"))),
                          message.value("PerceivedSeverity")});
    return alerts;
}

testing::AssertionResult numberedInOrder(const std::vector<TestListener::Message>& messages, unsigned first)
{
    for (const TestListener::Message& message : messages) {
        if (message.value("SequenceNumber") != std::to_string(first++))
            return testing::AssertionFailure()
                   << "number " << message.value("SequenceNumber") << " where " << first - 1 << " is due";
        if (message.value("SequenceContext") != messages.front().value("SequenceContext"))
            return testing::AssertionFailure() << "another context at number " << first - 1;
    }
    return testing::AssertionSuccess();
}

std::string property(const std::string& name, const std::string& type, const std::string& text)
{
    return "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + type + "\"><VALUE>" + escaped(text) + "</VALUE></PROPERTY>";
}

AlertsFixture::~AlertsFixture()
{
    if (HasFailure()) std::cerr << "passes of the host: " << machine.passes() << '\n';
}

std::string AlertsFixture::create(const std::string& ofClass, const std::string& properties) const
{
    const std::string reply = machine.ask(
        "CreateInstance",
        parameter("NewInstance", "<INSTANCE CLASSNAME=\"" + ofClass + "\">" + properties + "</INSTANCE>"), interop);
    EXPECT_EQ(errorCode(reply), 0u) << reply;
    return between(reply, "<IRETURNVALUE>\n", "</IRETURNVALUE>");
}

std::string AlertsFixture::staticFilter() const
{
    const std::string names = machine.ask("EnumerateInstanceNames", classParameter("CIM_IndicationFilter"), interop);
    const std::string begin = "<INSTANCENAME ", end = "</INSTANCENAME>";
    for (std::size_t at = 0; (at = names.find(begin, at)) != names.npos; at += begin.size()) {
        const std::string name = names.substr(at, names.find(end, at) + end.size() - at);
        if (name.find(">VNR:KDV_SAS:AllAlerts<") != name.npos) return name;
    }
    ADD_FAILURE() << "no filter for all alerts: " << names;
    return {};
}

std::string AlertsFixture::makeFilter(const std::string& name, const std::string& language,
                                      const std::string& query) const
{
    return create("CIM_IndicationFilter",
                  property("Name", "string", name) + property("QueryLanguage", "string", language) +
                      property("Query", "string", query) + property("SourceNamespace", "string", "root/vnr"));
}

Subscribed AlertsFixture::subscribe(const TestListener& listener, const std::string& name,
                                    const std::string& filter) const
{
    Subscribed made;
    made.destination = create("CIM_ListenerDestinationCIMXML", property("Name", "string", name) +
                                                                   property("Destination", "string", listener.url()) +
                                                                   property("PersistenceType", "uint16", "2"));
    made.subscription =
        create("CIM_IndicationSubscription",
               reference("Filter", filter.empty() ? staticFilter() : filter) + reference("Handler", made.destination));
    return made;
}

void AlertsFixture::remove(const std::string& instanceName) const
{
    const std::string reply = machine.ask("DeleteInstance", parameter("InstanceName", instanceName), interop);
    EXPECT_EQ(errorCode(reply), 0u) << reply;
}

} // namespace KDV::Host::Test
