#include "hosttest/CimClient.h"
#include "hosttest/TestHost.h"

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

const std::string box = parameter("ObjectName", instanceName("T_Box", {{"#Number", "1"}}));
const std::string disk =
    parameter("ObjectName", instanceName("T_Disk", {{"SystemName", "test &amp; system"}, {"DeviceID", "D2"}}));

class Associations : public testing::TestWithParam<Profile> {
protected:
    Associations() : host(settings()) {}
    static TestSettings settings()
    {
        TestSettings made;
        made.profile = GetParam();
        return made;
    }
    std::string ask(const std::string& method, const std::string& parameters)
    {
        return askHost(host.port(), intrinsic(method, parameters));
    }
    TestHost host;
};

std::string classFilter(const std::string& name, const std::string& ofClass)
{
    return parameter(name, className(ofClass));
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Profiles, Associations, testing::ValuesIn(allProfiles),
                         [](const auto& given) { return std::string(profileName(given.param)); });

TEST_P(Associations, FollowsFromBothEnds)
{
    const std::string disks = ask("Associators", box);
    EXPECT_EQ(count(disks, "<VALUE.OBJECTWITHPATH>"), 8u);
    EXPECT_NE(disks.find("<INSTANCEPATH><NAMESPACEPATH><HOST>"), std::string::npos);
    EXPECT_NE(
        disks.find("<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"test\"/></LOCALNAMESPACEPATH>"),
        std::string::npos);
    EXPECT_EQ(count(ask("Associators", disk), "<INSTANCE CLASSNAME=\"T_Box\">"), 1u);
    EXPECT_EQ(count(ask("AssociatorNames", box), "<OBJECTPATH>"), 8u);
    EXPECT_EQ(count(ask("AssociatorNames", disk), "<OBJECTPATH>"), 1u);
    EXPECT_EQ(count(ask("ReferenceNames", box), "<OBJECTPATH>"), 8u);
    const std::string links = ask("References", disk);
    EXPECT_EQ(count(links, "<VALUE.OBJECTWITHPATH>"), 1u);
    EXPECT_EQ(count(links, "<PROPERTY.REFERENCE "), 2u);
    EXPECT_NE(links.find("<KEYVALUE VALUETYPE=\"string\">D2</KEYVALUE>"), std::string::npos);
}

TEST_P(Associations, PassesEveryFilterOn)
{
    EXPECT_EQ(count(ask("Associators", box + classFilter("AssocClass", "T_BoxDisk")), "<VALUE.OBJECTWITHPATH>"), 8u);
    EXPECT_EQ(count(ask("AssociatorNames", box + classFilter("AssocClass", "T_Element")), "<OBJECTPATH>"), 0u)
        << "no association is below that class";
    const auto role = [](const char* name) { return parameter("Role", value(name)); };
    const auto resultRole = [](const char* name) { return parameter("ResultRole", value(name)); };
    EXPECT_EQ(count(ask("AssociatorNames", box + role("groupcomponent")), "<OBJECTPATH>"), 8u);
    EXPECT_EQ(count(ask("AssociatorNames", box + role("PartComponent")), "<OBJECTPATH>"), 0u);
    EXPECT_EQ(count(ask("AssociatorNames", box + resultRole("PartComponent")), "<OBJECTPATH>"), 8u);
    EXPECT_EQ(count(ask("AssociatorNames", box + resultRole("GroupComponent")), "<OBJECTPATH>"), 0u);
    EXPECT_EQ(count(ask("ReferenceNames", box + role("PartComponent")), "<OBJECTPATH>"), 0u);
    EXPECT_EQ(count(ask("References", box + classFilter("ResultClass", "T_BoxDisk")), "<VALUE.OBJECTWITHPATH>"), 8u);
}

TEST_P(Associations, GivesTheExactCodeForEachMistake)
{
    for (const char* method : {"Associators", "AssociatorNames", "References", "ReferenceNames"}) {
        EXPECT_EQ(errorCode(ask(method, "")), 4u) << method;
        EXPECT_EQ(errorCode(ask(method, parameter("ObjectName", instanceName("T_None", {{"a", "b"}})))), 4u) << method;
        EXPECT_EQ(errorCode(ask(method, box + classFilter("ResultClass", "T_None"))), 4u) << method;
        EXPECT_EQ(errorCode(ask(method, parameter("ObjectName", className("T_Box")))), 7u) << method;
    }
    EXPECT_EQ(errorCode(ask("Associators", box + classFilter("AssocClass", "T_None"))), 4u);
    EXPECT_EQ(errorCode(ask("References", box + classFilter("AssocClass", "T_BoxDisk"))), 4u) << "not its parameter";
}
