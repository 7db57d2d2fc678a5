#include "hosttest/CimClient.h"
#include "hosttest/TestHost.h"

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

std::string number(const std::string& name, unsigned given) { return parameter(name, value(std::to_string(given))); }

std::string contextOf(const std::string& reply)
{
    return between(reply, "<PARAMVALUE NAME=\"EnumerationContext\" PARAMTYPE=\"string\"><VALUE>", "</VALUE>");
}

bool isAtEnd(const std::string& reply)
{
    return between(reply, "<PARAMVALUE NAME=\"EndOfSequence\" PARAMTYPE=\"boolean\"><VALUE>", "</VALUE>") == "TRUE";
}

class Pull : public testing::Test {
protected:
    static TestSettings settings()
    {
        TestSettings made;
        made.disks = 25;
        made.pull.contexts = 3;
        made.pull.memory = 3000; // so that most objects wait in the file
        return made;
    }
    std::string ask(const std::string& method, const std::string& parameters)
    {
        return askHost(host.port(), intrinsic(method, parameters));
    }
    unsigned error(const std::string& method, const std::string& parameters)
    {
        return errorCode(ask(method, parameters));
    }
    std::string pull(const std::string& method, const std::string& context, unsigned most)
    {
        return ask(method, parameter("EnumerationContext", value(context)) + number("MaxObjectCount", most));
    }
    TestHost host{settings()};
    const std::string disks = classParameter("T_Disk");
    const std::string box = parameter("InstanceName", instanceName("T_Box", {{"#Number", "1"}}));
};

} // namespace

TEST_F(Pull, ReadsAnEnumerationInPiecesThatMakeTheWhole)
{
    std::string reply = ask("OpenEnumerateInstances", disks + number("MaxObjectCount", 4));
    std::string ids;
    std::size_t objects = 0;
    for (unsigned most = 4;; most = 7) {
        EXPECT_EQ(errorCode(reply), 0u);
        const std::size_t got = count(reply, "<VALUE.INSTANCEWITHPATH>");
        EXPECT_LE(got, most);
        objects += got;
        if (isAtEnd(reply)) break;
        EXPECT_EQ(got, most);
        reply = pull("PullInstancesWithPath", contextOf(reply), 7);
    }
    EXPECT_EQ(objects, 25u);
    EXPECT_EQ(contextOf(reply), "");
}

TEST_F(Pull, EndsAtOnceWhenEverythingFits)
{
    const std::string reply = ask("OpenEnumerateInstancePaths", disks + number("MaxObjectCount", 25));
    EXPECT_TRUE(isAtEnd(reply));
    EXPECT_EQ(count(reply, "<INSTANCEPATH>"), 25u);
}

TEST_F(Pull, OpensWithoutObjectsAndPullsNoneWhenAskedForNone)
{
    const std::string opened = ask("OpenEnumerateInstancePaths", disks);
    EXPECT_FALSE(isAtEnd(opened));
    EXPECT_EQ(count(opened, "<INSTANCEPATH>"), 0u);
    const std::string none = pull("PullInstancePaths", contextOf(opened), 0);
    EXPECT_EQ(contextOf(none), contextOf(opened));
    EXPECT_EQ(count(none, "<INSTANCEPATH>"), 0u);
    EXPECT_EQ(count(pull("PullInstancePaths", contextOf(opened), 1000), "<INSTANCEPATH>"), 25u);
    EXPECT_EQ(errorCode(pull("PullInstancePaths", contextOf(opened), 1)), 21u) << "the enumeration has ended";
}

TEST_F(Pull, OpensEveryKindOfEnumeration)
{
    const std::string all = number("MaxObjectCount", 100);
    EXPECT_EQ(count(ask("OpenAssociatorInstances", box + all), "<VALUE.INSTANCEWITHPATH>"), 25u);
    EXPECT_EQ(count(ask("OpenAssociatorInstancePaths", box + all), "<INSTANCEPATH>"), 25u);
    EXPECT_EQ(count(ask("OpenReferenceInstances", box + all), "<VALUE.INSTANCEWITHPATH>"), 25u);
    EXPECT_EQ(count(ask("OpenReferenceInstancePaths", box + all), "<INSTANCENAME CLASSNAME=\"T_BoxDisk\">"), 25u);
    EXPECT_EQ(error("OpenAssociatorInstancePaths",
                    parameter("InstanceName", instanceName("T_Box", {{"#Number", "9"}})) + all),
              0u)
        << "the provider follows from any box";
    EXPECT_EQ(
        error("OpenAssociatorInstancePaths",
              parameter("InstanceName", instanceName("T_Disk", {{"SystemName", "x"}, {"DeviceID", "D99"}})) + all),
        6u)
        << "nothing is linked, and there is no such disk";
}

TEST_F(Pull, ClosesAndForgets)
{
    const std::string opened = ask("OpenEnumerateInstances", disks);
    const std::string context = parameter("EnumerationContext", value(contextOf(opened)));
    EXPECT_EQ(error("CloseEnumeration", context), 0u);
    EXPECT_EQ(error("CloseEnumeration", context), 21u);
    EXPECT_EQ(error("CloseEnumeration", ""), 4u);
}

TEST_F(Pull, GivesTheExactCodeForEachMistake)
{
    EXPECT_EQ(error("OpenEnumerateInstances", classParameter("T_None")), 5u);
    EXPECT_EQ(error("OpenEnumerateInstances", ""), 4u);
    EXPECT_EQ(error("OpenEnumerateInstances", disks + parameter("ContinueOnError", value("TRUE"))), 26u);
    EXPECT_EQ(error("OpenEnumerateInstances", disks + parameter("ContinueOnError", value("FALSE"))), 0u);
    EXPECT_EQ(error("OpenEnumerateInstances", disks + parameter("FilterQuery", value("a=1")) +
                                                  parameter("FilterQueryLanguage", value("DMTF:FQL"))),
              25u);
    EXPECT_EQ(error("OpenEnumerateInstances", disks + number("OperationTimeout", 0)), 22u);
    EXPECT_EQ(error("OpenEnumerateInstances", disks + number("OperationTimeout", 100000)), 22u);
    EXPECT_EQ(error("OpenEnumerateInstances", disks + parameter("MaxObjectCount", value("-1"))), 4u);
    EXPECT_EQ(errorCode(pull("PullInstancesWithPath", "none", 1)), 21u);
    EXPECT_EQ(errorCode(pull("PullInstances", "none", 1)), 21u);
    EXPECT_EQ(error("PullInstancesWithPath", parameter("EnumerationContext", value("none"))), 4u);
    EXPECT_EQ(error("OpenQueryInstances", ""), 7u);
}

TEST_F(Pull, DoesNotMixKindsNorNamespaces)
{
    const std::string context = contextOf(ask("OpenEnumerateInstances", disks));
    EXPECT_EQ(errorCode(pull("PullInstancePaths", context, 1)), 21u);
    EXPECT_EQ(count(pull("PullInstancesWithPath", context, 1), "<VALUE.INSTANCEWITHPATH>"), 1u)
        << "the mistake did not end it";
}

TEST_F(Pull, BoundsTheOpenEnumerations)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NE(contextOf(ask("OpenEnumerateInstances", disks)), "");
    EXPECT_EQ(error("OpenEnumerateInstances", disks), 27u);
    EXPECT_EQ(error("OpenEnumerateInstances", disks + number("MaxObjectCount", 100)), 0u) << "needs no context";
}

TEST(PullContexts, AreForgottenWhenTheirTimeIsOver)
{
    PullContexts contexts(PullLimits{});
    const auto make = [] {
        auto context = std::make_unique<PullContext>(PullKind::InstancePaths, "root/test", 100);
        context->add("one");
        return context;
    };
    const std::string gone = contexts.keep(make(), 0);
    const std::string kept = contexts.keep(make(), 100);
    EXPECT_EQ(contexts.size(), 1u);
    std::uint32_t timeout = 0;
    EXPECT_THROW(contexts.take(gone, timeout), std::runtime_error);
    auto context = contexts.take(kept, timeout);
    EXPECT_EQ(timeout, 100u);
    EXPECT_THROW(contexts.take(kept, timeout), std::runtime_error) << "one pull at a time";
    std::string element;
    EXPECT_TRUE(context->next(element));
    EXPECT_EQ(element, "one");
    EXPECT_TRUE(context->atEnd());
    EXPECT_FALSE(context->next(element));
}
