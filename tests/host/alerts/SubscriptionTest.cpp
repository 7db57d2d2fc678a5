// Who has alerts, of what, and for how long: filters of the client's own, restarts, ends of subscriptions, nobody
// there.
#include "AlertsFixture.h"
#include "hosttest/CimClient.h"

#include <gmock/gmock.h>

using namespace KDV::Host::Test;
using testing::ElementsAre;

namespace {

class SubscriptionOfAlerts : public AlertsFixture {
protected:
    SubscriptionOfAlerts() { listener.listen(); }

    std::size_t subscriptions() const { return machine.countNames("CIM_IndicationSubscription", "interop"); }
    std::size_t destinations() const { return machine.countNames("CIM_ListenerDestinationCIMXML", "interop"); }

    TestListener listener;
};

} // namespace

TEST_F(SubscriptionOfAlerts, WithAFilterOfItsOwnGetsWhatTheFilterSelects)
{
    TestListener severe, disks, other;
    for (TestListener* each : {&severe, &disks, &other})
        each->listen();
    serveFile();
    subscribe(listener, "all");
    subscribe(severe, "severe",
              makeFilter("severe", "WQL", "SELECT * FROM KDV_SASIndication WHERE PerceivedSeverity >= 5"));
    subscribe(
        disks, "disks",
        makeFilter("disks", "DMTF:CQL", "SELECT * FROM KDV_SASIndication WHERE EventID = '204' OR EventID = '201'"));
    subscribe(
        other, "other",
        makeFilter("other", "WQL", "SELECT * FROM KDV_SASIndication WHERE NOT (HWSerialNumber = 'SP0711K4X004')"));
    file.disk(3)["status"] = "predictiveFailure";
    file.box(0)["fanStatus"] = "failed";
    pass();
    file.disk(3)["status"] = "failed";
    pass();
    file.disk(3)["status"] = "ok";
    file.box(0)["fanStatus"] = "ok";
    pass();
    ASSERT_TRUE(listener.waitForTaken(5));
    EXPECT_THAT(listener.takenValues("EventID"), ElementsAre("204", "305", "202", "201", "304"));
    ASSERT_TRUE(severe.waitForTaken(2));
    ASSERT_TRUE(disks.waitForTaken(2));
    ASSERT_TRUE(other.waitForTaken(2));
    EXPECT_THAT(severe.takenValues("EventID"), ElementsAre("305", "202"));
    EXPECT_THAT(disks.takenValues("EventID"), ElementsAre("204", "201"));
    EXPECT_THAT(other.takenValues("EventID"), ElementsAre("305", "304"));
    for (const TestListener* each : {&severe, &disks, &other})
        EXPECT_TRUE(numberedInOrder(each->taken())) << "what a filter leaves out makes no gap";
}

TEST_F(SubscriptionOfAlerts, CannotBeMadeOfAQueryThatMeansNothing)
{
    serveFile();
    const auto codeOf = [&](const std::string& language, const std::string& query) {
        return errorCode(machine.ask(
            "CreateInstance",
            parameter("NewInstance",
                      "<INSTANCE CLASSNAME=\"CIM_IndicationFilter\">" + property("Name", "string", "wrong") +
                          property("QueryLanguage", "string", language) + property("Query", "string", query) +
                          property("SourceNamespace", "string", "root/vnr") + "</INSTANCE>"),
            "interop"));
    };
    EXPECT_EQ(codeOf("Prolog", "alert(X)."), 14u);
    EXPECT_EQ(codeOf("WQL", "SELECT FROM WHERE"), 15u);
    EXPECT_EQ(codeOf("WQL", "SELECT * FROM KDV_SASIndication WHERE Colour = 'red'"), 15u);
    EXPECT_EQ(codeOf("WQL", "SELECT * FROM KDV_Nothing"), 15u);
    EXPECT_EQ(machine.countNames("CIM_IndicationFilter", "interop"), 1u);
}

TEST_F(SubscriptionOfAlerts, IsThereAfterARestartAndWorks)
{
    serveFile();
    subscribe(listener, "restart");
    file.box(0)["fanStatus"] = "failed";
    pass();
    ASSERT_TRUE(listener.waitForTaken(1));
    EXPECT_EQ(machine.terminate(), 0);

    serveFile();
    EXPECT_EQ(subscriptions(), 1u);
    EXPECT_EQ(destinations(), 1u);
    machine.performWork(); // a provider that starts anew has seen nothing yet, so the fan is news to it
    ASSERT_TRUE(listener.waitForTaken(2));
    file.box(0)["fanStatus"] = "ok";
    pass();
    ASSERT_TRUE(listener.waitForTaken(3));
    const std::vector<TestListener::Message> taken = listener.taken();
    EXPECT_THAT(listener.takenValues("EventID"), ElementsAre("305", "305", "304"));
    EXPECT_TRUE(numberedInOrder({taken[0]}));
    EXPECT_TRUE(numberedInOrder({taken[1], taken[2]}));
    EXPECT_NE(taken[0].value("SequenceContext"), taken[1].value("SequenceContext"));
}

TEST_F(SubscriptionOfAlerts, SurvivesThatTheHostIsKilled)
{
    serveFile();
    const Subscribed kept = subscribe(listener, "kept");
    TestListener gone;
    remove(subscribe(gone, "gone").subscription);
    machine.kill();

    serveFile();
    EXPECT_EQ(subscriptions(), 1u);
    EXPECT_EQ(destinations(), 2u);
    file.volume(1)["redundancyState"] = "redundancyLost";
    pass();
    ASSERT_TRUE(listener.waitForTaken(1));
    EXPECT_THAT(listener.takenValues("EventID"), ElementsAre("103"));
    remove(kept.subscription);
    EXPECT_EQ(subscriptions(), 0u);
}

TEST_F(SubscriptionOfAlerts, ThatEndsGetsNoMore)
{
    TestListener staying;
    staying.listen();
    serveFile();
    const Subscribed ending = subscribe(listener, "ending");
    subscribe(staying, "staying");
    file.box(0)["fanStatus"] = "failed";
    pass();
    ASSERT_TRUE(listener.waitForTaken(1));
    remove(ending.subscription);
    remove(ending.destination);
    file.box(0)["fanStatus"] = "ok";
    pass();
    file.disk(6)["status"] = "failed";
    pass();
    ASSERT_TRUE(staying.waitForTaken(3));
    EXPECT_THAT(staying.takenValues("EventID"), ElementsAre("305", "304", "202"));
    EXPECT_EQ(machine.terminate(), 0); // what waits for delivery is delivered or given up now
    EXPECT_THAT(listener.takenValues("EventID"), ElementsAre("305"));
}

TEST_F(SubscriptionOfAlerts, ThatComesLaterHearsOfWhatHappenedWhileNobodyListened)
{
    serveFile();
    file.box(0)["fanStatus"] = "failed";
    pass();
    EXPECT_EQ(machine.countInLog("Send indication"), 0u) << "nobody is there";
    const Subscribed first = subscribe(listener, "first");
    machine.performWork();
    ASSERT_TRUE(listener.waitForTaken(1));
    remove(first.subscription);

    file.box(0)["fanStatus"] = "ok";
    file.disk(6)["status"] = "predictiveFailure";
    pass();
    machine.performWork();
    EXPECT_EQ(machine.countInLog("indication sent with success"), 1u) << "nobody is there again";
    EXPECT_THAT(listener.takenValues("EventID"), ElementsAre("305"));

    TestListener later;
    later.listen();
    subscribe(later, "later");
    machine.performWork();
    ASSERT_TRUE(later.waitForTaken(2));
    EXPECT_THAT(later.takenValues("EventID"), ElementsAre("204", "304"));
    EXPECT_THAT(listener.takenValues("EventID"), ElementsAre("305"));
}
