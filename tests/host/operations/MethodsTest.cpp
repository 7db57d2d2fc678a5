#include "hosttest/CimClient.h"
#include "hosttest/TestHost.h"

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

const std::string box = instanceName("T_Box", {{"#Number", "1"}});

std::string input(const std::string& name, const std::string& text)
{
    return "<PARAMVALUE NAME=\"" + name + "\" PARAMTYPE=\"uint32\"><VALUE>" + text + "</VALUE></PARAMVALUE>";
}

} // namespace

TEST(Methods, CallsAMethodOfAnInstanceWithItsParameters)
{
    TestHost host;
    const std::string reply = askHost(host.port(), extrinsic("blink", box, input("times", "21")));
    EXPECT_NE(reply.find("<METHODRESPONSE NAME=\"blink\">"), std::string::npos);
    EXPECT_NE(reply.find("<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>42</VALUE></RETURNVALUE>"), std::string::npos);
    EXPECT_NE(reply.find("<PARAMVALUE NAME=\"Said\" PARAMTYPE=\"string\"><VALUE>blink &amp; wink</VALUE></PARAMVALUE>"),
              std::string::npos)
        << reply;
}

TEST(Methods, CallsAMethodOfAClass)
{
    TestHost host;
    EXPECT_EQ(errorCode(askHost(host.port(), extrinsic("Blink", className("T_Box"), ""))), 0u);
}

TEST(Methods, GivesTheExactCodeForEachMistake)
{
    TestHost host;
    const auto error = [&](const std::string& body) { return errorCode(askHost(host.port(), body)); };
    EXPECT_EQ(error(extrinsic("Wink", box, "")), 17u);
    EXPECT_EQ(error(extrinsic("Blink", className("T_None"), "")), 5u);
    EXPECT_EQ(error(extrinsic("Blink", className("T_Box"), "", "root/none")), 3u);
    EXPECT_EQ(error(extrinsic("Blink", className("T_FailsEarly"), "")), 16u) << "declared, but nobody serves it";
    EXPECT_EQ(error(extrinsic("Blink", box, input("Colour", "1"))), 4u);
    EXPECT_EQ(error(extrinsic("Blink", box, input("Said", "1"))), 4u) << "an output";
    EXPECT_EQ(error(extrinsic("Blink", box, input("Times", "many"))), 13u);
}

TEST(Methods, LeavesTheNameToTheProviderWhereThatServerDoes)
{
    TestSettings settings;
    settings.profile = Profile::Sfcb;
    TestHost host(settings);
    EXPECT_NE(askHost(host.port(), extrinsic("Wink", box, "")).find("<VALUE>1</VALUE>"), std::string::npos);
}
