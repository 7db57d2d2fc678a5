// The whole model of the default scenario as a client sees it over HTTP, every reply held against the document type.
#include "ProgramHost.h"
#include "hosttest/CimClient.h"
#include "hosttest/ReplyChecker.h"

#include <deque>
#include <set>

#include <gtest/gtest.h>

using namespace KDV::Host::Test;

namespace {

std::set<std::string> namesIn(const std::string& reply)
{
    std::set<std::string> names;
    const std::string begin = "<INSTANCENAME ", end = "</INSTANCENAME>\n";
    for (std::size_t at = 0; (at = reply.find(begin, at)) != reply.npos;) {
        const std::size_t to = reply.find(end, at) + end.size();
        names.insert(reply.substr(at, to - at));
        at = to;
    }
    return names;
}

class Model : public testing::Test {
protected:
    static void SetUpTestSuite() { host = new ProgramHost; }
    static void TearDownTestSuite()
    {
        if (host) {
            EXPECT_EQ(host->terminate(), 0) << host->greeting();
        }
        delete host;
    }
    // Over one connection; the reply must be valid and without an error.
    std::string ask(const std::string& method, const std::string& parameters)
    {
        client.send(post(intrinsic(method, parameters, "root/vnr")));
        const RawReply got = client.read();
        EXPECT_EQ(got.status, 200u);
        EXPECT_EQ(checkReply(got.body), "") << method << parameters;
        EXPECT_EQ(errorCode(got.body), 0u) << method << parameters << got.body;
        return got.body;
    }
    static ProgramHost* host;
    RawClient client{host->port()};
};

ProgramHost* Model::host = nullptr;

} // namespace

TEST_F(Model, GetInstanceGivesWhatTheEnumerationGaveForEveryInstance)
{
    const std::string all = ask("EnumerateInstances", classParameter("CIM_ManagedElement"));
    const std::string begin = "<VALUE.NAMEDINSTANCE>";
    std::size_t instances = 0;
    for (std::size_t at = 0; (at = all.find(begin, at)) != all.npos; ++instances) {
        at += begin.size();
        const std::size_t content = all.find("<INSTANCE ", at);
        const std::size_t end = all.find("</VALUE.NAMEDINSTANCE>", at);
        const std::string one = ask("GetInstance", parameter("InstanceName", all.substr(at, content - at)));
        EXPECT_EQ(between(one, "<IRETURNVALUE>\n", "</IRETURNVALUE>"), all.substr(content, end - content));
        at = end;
    }
    EXPECT_GT(instances, 100u);
    EXPECT_EQ(count(ask("EnumerateInstanceNames", classParameter("CIM_ManagedElement")), "<INSTANCENAME "), instances);
}

TEST_F(Model, EveryInstanceCanBeReachedFromAnArraySystem)
{
    std::set<std::string> missing = namesIn(ask("EnumerateInstanceNames", classParameter("CIM_ManagedElement")));
    std::deque<std::string> waiting;
    for (const std::string& name : namesIn(ask("EnumerateInstanceNames", classParameter("KDV_SASArraySystem"))))
        waiting.push_back(name);
    ASSERT_FALSE(waiting.empty());
    std::set<std::string> seen(waiting.begin(), waiting.end());
    while (!waiting.empty()) {
        const std::string name = waiting.front();
        waiting.pop_front();
        missing.erase(name);
        for (const std::string& next : namesIn(ask("AssociatorNames", parameter("ObjectName", name))))
            if (seen.insert(next).second) waiting.push_back(next);
    }
    EXPECT_TRUE(missing.empty()) << missing.size() << " not reached, the first " << *missing.begin();
}

TEST_F(Model, TheFourAssociationOperationsAgreeOnEveryInstance)
{
    for (const std::string& name : namesIn(ask("EnumerateInstanceNames", classParameter("CIM_ManagedElement")))) {
        const std::string object = parameter("ObjectName", name);
        const std::size_t others = count(ask("AssociatorNames", object), "<OBJECTPATH>");
        EXPECT_GT(others, 0u) << name;
        EXPECT_EQ(count(ask("Associators", object), "<VALUE.OBJECTWITHPATH>"), others) << name;
        const std::size_t links = count(ask("ReferenceNames", object), "<OBJECTPATH>");
        EXPECT_EQ(links, others) << name;
        EXPECT_EQ(count(ask("References", object), "<VALUE.OBJECTWITHPATH>"), links) << name;
    }
}

TEST_F(Model, EveryClassCanBeReadAndEveryServedClassAnswers)
{
    const std::string names = ask("EnumerateClassNames", parameter("DeepInheritance", value("TRUE")));
    std::size_t classes = 0;
    const std::string begin = "<CLASSNAME NAME=\"";
    for (std::size_t at = 0; (at = names.find(begin, at)) != names.npos; ++classes) {
        at += begin.size();
        const std::string name = names.substr(at, names.find('"', at) - at);
        EXPECT_EQ(count(ask("GetClass", classParameter(name) + parameter("LocalOnly", value("FALSE"))), "<CLASS "), 1u);
        if (name.compare(0, 4, "KDV_") == 0) ask("EnumerateInstances", classParameter(name));
    }
    EXPECT_GT(classes, 100u);
}
