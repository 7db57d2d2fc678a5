#include "hosttest/CimClient.h"
#include "hosttest/TestHost.h"

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

class Interop : public testing::Test {
protected:
    static TestSettings settings()
    {
        TestSettings made;
        made.core = true;
        return made;
    }
    std::string ask(const std::string& method, const std::string& parameters, const std::string& nameSpace)
    {
        return askHost(host.port(), intrinsic(method, parameters, nameSpace));
    }
    TestHost host{settings()};
};

} // namespace

TEST_F(Interop, NamesEveryNamespaceUnderBothNamesOfItsOwn)
{
    for (const char* nameSpace : {"interop", "root/interop", "ROOT/INTEROP", "root"}) {
        const std::string reply = ask("EnumerateInstances", classParameter("CIM_Namespace"), nameSpace);
        EXPECT_EQ(count(reply, "<VALUE.NAMEDINSTANCE>"), 3u) << reply;
        for (const char* name : {"interop", "root", "root/test"})
            EXPECT_NE(reply.find("<PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>" + std::string(name) + "</VALUE>"),
                      std::string::npos);
    }
}

TEST_F(Interop, AnswersTheProbesOfClientsWithTheExactCodes)
{
    const auto probe = [&](const char* ofClass, const char* nameSpace) {
        return errorCode(ask("EnumerateInstanceNames", classParameter(ofClass), nameSpace));
    };
    EXPECT_EQ(probe("CIM_Namespace", "interop"), 0u);
    EXPECT_EQ(probe("CIM_Namespace", "root/PG_Interop"), 3u);
    EXPECT_EQ(probe("CIM_WBEMServerNamespace", "interop"), 5u);
    EXPECT_EQ(probe("__Namespace", "root"), 0u);
}

TEST_F(Interop, NamesTheNamespacesBelowRoot)
{
    const std::string reply = ask("EnumerateInstanceNames", classParameter("__Namespace"), "root");
    EXPECT_EQ(count(reply, "<INSTANCENAME "), 2u);
    EXPECT_NE(reply.find(">test</KEYVALUE>"), std::string::npos);
    EXPECT_NE(reply.find(">interop</KEYVALUE>"), std::string::npos);
}

TEST_F(Interop, DescribesTheObjectManager)
{
    const std::string names = ask("EnumerateInstanceNames", classParameter("CIM_ObjectManager"), "interop");
    const std::string name = between(names, "<IRETURNVALUE>\n", "</IRETURNVALUE>");
    const std::string reply = ask("GetInstance", parameter("InstanceName", name), "interop");
    EXPECT_EQ(count(reply, "<INSTANCE CLASSNAME=\"CIM_ObjectManager\">"), 1u) << reply;
    EXPECT_NE(reply.find("<VALUE>kdv-cimhost</VALUE>"), std::string::npos);
    EXPECT_EQ(count(ask("EnumerateInstances", classParameter("CIM_Service"), "interop"), "<VALUE.NAMEDINSTANCE>"), 1u);
    EXPECT_EQ(errorCode(ask("GetInstance",
                            parameter("InstanceName", instanceName("CIM_RegisteredProfile", {{"InstanceID", "x"}})),
                            "interop")),
              6u);
}

TEST_F(Interop, ClaimsTheProfileByWhichProfilesAreClaimed)
{
    const std::string names = ask("EnumerateInstanceNames", classParameter("CIM_RegisteredProfile"), "interop");
    EXPECT_EQ(count(names, "<INSTANCENAME "), 1u);
    const std::string profile = parameter("ObjectName", between(names, "<IRETURNVALUE>\n", "</IRETURNVALUE>"));
    const auto conforms = parameter("AssocClass", className("CIM_ElementConformsToProfile"));
    EXPECT_EQ(count(ask("AssociatorNames", profile + conforms, "interop"), "<OBJECTPATH>"), 2u)
        << "it is its own central instance, seen from both ends";
    EXPECT_EQ(count(ask("AssociatorNames", profile + parameter("ResultRole", value("ManagedElement")), "interop"),
                    "<OBJECTPATH>"),
              1u);
    EXPECT_EQ(count(ask("Associators", profile + parameter("Role", value("ConformantStandard")), "interop"),
                    "<INSTANCE CLASSNAME=\"CIM_RegisteredProfile\">"),
              1u);
    EXPECT_EQ(count(ask("References", profile, "interop"), "<VALUE.OBJECTWITHPATH>"), 1u);
    EXPECT_EQ(count(ask("ReferenceNames", profile, "interop"), "<OBJECTPATH>"), 1u);
    const std::string call =
        extrinsic("GetCentralInstances", between(names, "<IRETURNVALUE>\n", "</IRETURNVALUE>"), "", "interop");
    EXPECT_EQ(errorCode(askHost(host.port(), call)), 17u);
}
