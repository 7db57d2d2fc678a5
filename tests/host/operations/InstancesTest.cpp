#include "hosttest/CimClient.h"
#include "hosttest/ReplyChecker.h"
#include "hosttest/TestHost.h"

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

const std::vector<std::pair<std::string, std::string>> firstDisk{{"SystemName", "test &amp; system"},
                                                                 {"DeviceID", "D0"}};

std::string get(const std::string& name, const std::string& more = {})
{
    return intrinsic("GetInstance", parameter("InstanceName", name) + more);
}

std::string propertyList(const std::vector<std::string>& names)
{
    std::string list = "<VALUE.ARRAY>";
    for (const std::string& name : names)
        list += value(name);
    return parameter("PropertyList", list + "</VALUE.ARRAY>");
}

// Everything below runs under each of the broker's profiles.
class Instances : public testing::TestWithParam<Profile> {
protected:
    Instances() : host(settings()) {}
    static TestSettings settings()
    {
        TestSettings made;
        made.profile = GetParam();
        return made;
    }
    std::string ask(const std::string& body) { return askHost(host.port(), body); }
    unsigned error(const std::string& body) { return errorCode(ask(body)); }
    TestHost host;
};

std::string profileOf(const testing::TestParamInfo<Profile>& info) { return std::string(profileName(info.param)); }

} // namespace

INSTANTIATE_TEST_SUITE_P(Profiles, Instances, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Instances, EnumeratesAClassWithPathsAndProperties)
{
    const std::string reply = ask(intrinsic("EnumerateInstances", classParameter("T_Disk")));
    EXPECT_EQ(errorCode(reply), 0u);
    EXPECT_EQ(count(reply, "<VALUE.NAMEDINSTANCE>"), 8u);
    EXPECT_EQ(count(reply, "<INSTANCE CLASSNAME=\"T_Disk\">"), 7u);
    EXPECT_EQ(count(reply, "<INSTANCE CLASSNAME=\"T_SolidDisk\">"), 1u)
        << "the subclass comes from its own registration";
    EXPECT_EQ(count(reply, "CLASSORIGIN"), 0u);
    EXPECT_NE(reply.find("<INSTANCENAME CLASSNAME=\"T_Disk\"><KEYBINDING NAME=\"SystemName\"><KEYVALUE "
                         "VALUETYPE=\"string\">test &amp; system</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"DeviceID\">"
                         "<KEYVALUE VALUETYPE=\"string\">D0</KEYVALUE></KEYBINDING></INSTANCENAME>"),
              std::string::npos)
        << reply;
}

TEST_P(Instances, WritesEveryTypeAsTheStandardSays)
{
    const std::string reply = ask(get(instanceName("T_Disk", firstDisk)));
    const auto has = [&](const std::string& text) { EXPECT_NE(reply.find(text), std::string::npos) << text; };
    has("<PROPERTY NAME=\"Hot\" TYPE=\"boolean\"><VALUE>TRUE</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"U8\" TYPE=\"uint8\"><VALUE>255</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"U64\" TYPE=\"uint64\"><VALUE>18446744073709551615</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"S8\" TYPE=\"sint8\"><VALUE>-128</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"S64\" TYPE=\"sint64\"><VALUE>-5000000000</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"R32\" TYPE=\"real32\"><VALUE>5.0e-01</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"R64\" TYPE=\"real64\"><VALUE>-1.25e+300</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"When\" TYPE=\"datetime\"><VALUE>20260102030405.000006+060</VALUE></PROPERTY>");
    has("<PROPERTY NAME=\"Letter\" TYPE=\"char16\"><VALUE>\xC3\xA4</VALUE></PROPERTY>");
    has("<PROPERTY.ARRAY NAME=\"Texts\" TYPE=\"string\"><VALUE.ARRAY><VALUE>one</VALUE><VALUE>two &lt; three</VALUE>"
        "</VALUE.ARRAY></PROPERTY.ARRAY>");
    has("<PROPERTY.ARRAY NAME=\"OperationalStatus\" TYPE=\"uint16\"><VALUE.ARRAY><VALUE>2</VALUE></VALUE.ARRAY>");
    has("<PROPERTY NAME=\"NotSet\" TYPE=\"string\"></PROPERTY>");
}

TEST_P(Instances, MakesBadTextsValid)
{
    const std::string reply = ask(get(instanceName("T_Disk", firstDisk)));
    EXPECT_NE(reply.find("<VALUE>bad \xEF\xBF\xBD\xEF\xBF\xBD( \xEF\xBF\xBD &quot;&lt;&amp;&gt;&#13;\n\tend "
                         "\xE2\x82\xAC</VALUE>"),
              std::string::npos)
        << reply;
}

TEST_P(Instances, SaysWhereAPropertyComesFromWhenAsked)
{
    const std::string asked = parameter("IncludeClassOrigin", value("TRUE"));
    const std::string reply =
        ask(get(instanceName("T_SolidDisk", {{"SystemName", "test &amp; system"}, {"DeviceID", "D7"}}), asked));
    EXPECT_NE(reply.find("<PROPERTY NAME=\"DeviceID\" CLASSORIGIN=\"T_Device\" TYPE=\"string\">"), std::string::npos);
    EXPECT_NE(reply.find("<PROPERTY NAME=\"Model\" CLASSORIGIN=\"T_Disk\" TYPE=\"string\">"), std::string::npos);
}

TEST_P(Instances, ReachesSubclassesFromASuperclass)
{
    EXPECT_EQ(count(ask(intrinsic("EnumerateInstances", classParameter("t_device"))), "<VALUE.NAMEDINSTANCE>"), 8u);
    EXPECT_EQ(count(ask(intrinsic("EnumerateInstanceNames", classParameter("T_Device"))), "<INSTANCENAME "), 8u);
    EXPECT_EQ(count(ask(intrinsic("EnumerateInstanceNames", classParameter("T_SolidDisk"))), "<INSTANCENAME "), 1u);
}

TEST_P(Instances, LeavesOutWhatThePropertyListDoesNotName)
{
    const std::string reply = ask(get(instanceName("T_Disk", firstDisk), propertyList({"model", "U8", "Nothing"})));
    if (GetParam() == Profile::Sfcb) {
        EXPECT_GT(count(reply, "<PROPERTY"), 20u) << "that server leaves it to the provider, and this one does not";
        return;
    }
    EXPECT_EQ(count(reply, "<PROPERTY"), 2u) << reply;
    EXPECT_EQ(count(ask(get(instanceName("T_Disk", firstDisk), propertyList({}))), "<PROPERTY"), 0u);
    const std::string all = ask(intrinsic("EnumerateInstances", classParameter("T_Disk") + propertyList({"Model"})));
    EXPECT_EQ(count(all, "<PROPERTY "), 8u);
    EXPECT_EQ(count(all, "<KEYBINDING "), 16u) << "the path keeps its keys";
}

TEST_P(Instances, GivesTheExactCodeForEachMistake)
{
    const std::string disk = instanceName("T_Disk", firstDisk);
    EXPECT_EQ(error(intrinsic("EnumerateInstances", classParameter("T_Disk"), "root/none")), 3u);
    EXPECT_EQ(error(intrinsic("EnumerateInstances", classParameter("T_None"))), 5u);
    EXPECT_EQ(error(intrinsic("EnumerateInstanceNames", classParameter("T_None"))), 5u);
    EXPECT_EQ(error(intrinsic("EnumerateInstances", "")), 4u) << "no class name";
    EXPECT_EQ(error(intrinsic("EnumerateInstances", classParameter("T_Disk") + classParameter("T_Disk"))), 4u);
    EXPECT_EQ(error(intrinsic("EnumerateInstances", classParameter("T_Disk") + parameter("Extra", value("1")))), 4u);
    EXPECT_EQ(error(intrinsic("EnumerateInstances", classParameter("T_Disk") + parameter("LocalOnly", value("maybe")))),
              4u);
    EXPECT_EQ(error(intrinsic("EnumerateInstances", parameter("ClassName", disk))), 4u) << "an instance is no class";
    EXPECT_EQ(error(get(instanceName("T_None", firstDisk))), 5u);
    EXPECT_EQ(error(get(instanceName("T_Device", firstDisk))), 6u) << "nobody serves the superclass";
    EXPECT_EQ(error(get(instanceName("T_Disk", {{"SystemName", "test &amp; system"}, {"DeviceID", "D99"}}))), 6u);
    EXPECT_EQ(error(get(instanceName("T_Disk", {{"DeviceID", "D0"}}))), 4u) << "a key is missing";
    EXPECT_EQ(error(get(instanceName("T_Disk", {{"SystemName", "x"}, {"DeviceID", "D0"}, {"Model", "y"}}))), 4u);
    EXPECT_EQ(error(get(instanceName("T_Box", {{"#Number", "one"}}))), 4u);
    EXPECT_EQ(error(get(instanceName("T_Box", {{"#Number", "99999999999"}}))), 4u);
    EXPECT_EQ(error(get(className("T_Box"))), 4u);
    EXPECT_EQ(error(intrinsic("GetInstance", "")), 4u);
    EXPECT_EQ(error(get(instanceName("T_Box", {{"#Number", "1"}}))), 0u);
    EXPECT_EQ(error(get(instanceName("T_Box", {{"Number", "1"}}))), 0u) << "a number written as a text";
}

TEST_P(Instances, SaysWhatIsNotSupported)
{
    for (const char* operation :
         {"ExecQuery", "SetProperty", "GetProperty", "CreateClass", "DeleteClass", "ModifyClass", "OpenQueryInstances",
          "EnumerationCount", "EnumerateQualifiers", "Nonsense"}) {
        const std::string reply = ask(intrinsic(operation, "", "root/none"));
        EXPECT_EQ(errorCode(reply), 7u) << operation;
        EXPECT_NE(reply.find("<IMETHODRESPONSE NAME=\"" + std::string(operation) + "\">"), std::string::npos);
    }
    EXPECT_EQ(error(intrinsic("DeleteInstance", parameter("InstanceName", instanceName("T_Box", {{"#Number", "1"}})))),
              7u);
}

TEST_P(Instances, PassesOnAFailureWithItsText)
{
    const std::string reply = ask(intrinsic("EnumerateInstances", classParameter("T_FailsEarly")));
    EXPECT_EQ(errorCode(reply), 1u);
    EXPECT_NE(reply.find("DESCRIPTION=\"no more &quot;disks&quot; &amp; that is &lt;all&gt;\""), std::string::npos);
    EXPECT_EQ(count(reply, "<IRETURNVALUE"), 0u) << "what came before the failure is not sent";
}

TEST_P(Instances, TellsOfALateFailureInTrailersOrByBreakingOff)
{
    const std::string request = intrinsic("EnumerateInstances", classParameter("T_FailsLate"));
    RawClient modern(host.port());
    modern.send(post(request, "TE: chunked, trailers\r\n"));
    const RawReply told = modern.read();
    EXPECT_FALSE(told.truncated);
    EXPECT_EQ(checkReply(told.body), "");
    EXPECT_EQ(told.trailers.at("cimstatuscode"), "2");
    EXPECT_EQ(told.trailers.at("cimstatuscodedescription"), "late%20%26%20sorry");
    RawClient plain(host.port());
    plain.send(post(request));
    const RawReply broken = plain.read();
    EXPECT_TRUE(broken.truncated) << "half a result must not look like a whole one";
    EXPECT_EQ(ask(intrinsic("EnumerateInstanceNames", classParameter("T_Box"))).empty(), false);
}

TEST_P(Instances, TakesReferenceKeysAsElementsAndAsText)
{
    const std::string names = ask(intrinsic("EnumerateInstanceNames", classParameter("T_BoxDisk")));
    const std::string name =
        "<INSTANCENAME CLASSNAME=\"T_BoxDisk\">" +
        between(names, "<INSTANCENAME CLASSNAME=\"T_BoxDisk\">", "</KEYBINDING></INSTANCENAME>\n<INSTANCENAME") +
        "</KEYBINDING></INSTANCENAME>";
    EXPECT_EQ(error(get(name)), 6u) << "read, asked for, and not found: the provider has none to get";
    const std::string asText =
        "<INSTANCENAME CLASSNAME=\"T_BoxDisk\"><KEYBINDING NAME=\"GroupComponent\"><KEYVALUE>"
        "root/test:T_Box.Number=1</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"PartComponent\"><KEYVALUE>"
        "T_Disk.SystemName=\"a\\\"b\",DeviceID=\"D0\"</KEYVALUE></KEYBINDING></INSTANCENAME>";
    EXPECT_EQ(error(get(asText)), 6u);
    EXPECT_EQ(error(get(instanceName("T_BoxDisk", {{"GroupComponent", "?"}, {"PartComponent", "?"}}))), 4u);
}
