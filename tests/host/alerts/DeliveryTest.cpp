// Listeners that misbehave for a while. Passes go on meanwhile, and afterwards everything has arrived in order.
#include "AlertsFixture.h"
#include "hosttest/CimClient.h"

using namespace KDV::Host::Test;
using Reply = TestListener::Reply;

namespace {

const std::string box = "KDV_SASStorageEnclosureProcessor KDV_SASStorageEnclosureProcessor-0-1";
const Alert fanFailed{"305", box, "5"}, fanOk{"304", box, "2"};
const Alert diskFailed{"202", "KDV_SASDiskDrive GR02T55D0071", "5"},
    diskOk{"201", "KDV_SASDiskDrive GR02T55D0071", "2"};

const std::vector<Alert> fourAlerts = {fanFailed, diskFailed, fanOk, diskOk};

class Delivery : public AlertsFixture {
protected:
    // Each change in a pass of its own, which must end although the listener may not take anything.
    void changeFourTimes()
    {
        file.box(0)["fanStatus"] = "failed";
        pass();
        file.disk(6)["status"] = "failed";
        pass();
        file.box(0)["fanStatus"] = "ok";
        pass();
        file.disk(6)["status"] = "ok";
        pass();
        EXPECT_EQ(machine.countInLog("indication sent with success"), 4u) << "the provider waited for nobody";
    }
    void expectAllTaken()
    {
        ASSERT_TRUE(listener.waitForTaken(4));
        EXPECT_EQ(alertsOf(listener.taken()), fourAlerts);
        EXPECT_TRUE(numberedInOrder(listener.taken()));
    }
    // All that were sent, those that were not taken included, never went back: a failed one is sent again before later
    // ones.
    void expectNoLaterBeforeEarlier()
    {
        long last = 0;
        for (const TestListener::Message& message : listener.received()) {
            const long number = std::stol(message.value("SequenceNumber"));
            EXPECT_TRUE(number == last || number == last + 1) << number << " after " << last;
            last = number;
        }
    }

    TestListener listener;
};

} // namespace

TEST_F(Delivery, ToAListenerThatIsDownWaitsUntilItIsUp)
{
    serveFile();
    subscribe(listener, "down");
    changeFourTimes();
    listener.listen();
    expectAllTaken();
    expectNoLaterBeforeEarlier();
}

TEST_F(Delivery, IsRepeatedAfterHttpErrors)
{
    listener.listen();
    listener.reply(Reply::Http500, 2);
    serveFile();
    subscribe(listener, "http-500");
    changeFourTimes();
    expectAllTaken();
    expectNoLaterBeforeEarlier();
    EXPECT_EQ(listener.received().size(), 6u);
}

TEST_F(Delivery, IsRepeatedWhenTheListenerAnswersThatItFailed)
{
    listener.listen();
    listener.reply(Reply::Ok);
    listener.reply(Reply::CimFailed, 2);
    serveFile();
    subscribe(listener, "cim-failed");
    changeFourTimes();
    expectAllTaken();
    expectNoLaterBeforeEarlier();
    EXPECT_EQ(listener.received().size(), 6u);
}

TEST_F(Delivery, IsRepeatedOnANewConnectionWhenTheListenerHangsUp)
{
    listener.listen();
    listener.reply(Reply::Close);
    listener.reply(Reply::CloseInBody);
    serveFile();
    subscribe(listener, "hangs-up");
    changeFourTimes();
    expectAllTaken();
    expectNoLaterBeforeEarlier();
    EXPECT_GE(listener.connections(), 3u);
}

TEST_F(Delivery, ToASlowListenerHoldsUpNeitherPassesNorRequestsNorOthers)
{
    listener.listen();
    listener.reply(Reply::Hold, 4);
    TestListener other;
    other.listen();
    serveFile();
    subscribe(listener, "slow");
    subscribe(other, "quick");
    changeFourTimes(); // the first message is held all the time
    EXPECT_TRUE(other.waitForTaken(4));
    EXPECT_EQ(alertsOf(other.taken()), fourAlerts);
    EXPECT_EQ(machine.countNames("KDV_SASDiskDrive"), 24u);
    EXPECT_TRUE(listener.taken().empty());
    listener.release();
    expectAllTaken();
}

TEST_F(Delivery, OfAMessageThatIsRefusedForGoodEndsAndTheNextOnesCome)
{
    listener.listen();
    listener.reply(Reply::CimNotSupported);
    serveFile();
    subscribe(listener, "refuses");
    changeFourTimes();
    ASSERT_TRUE(listener.waitForTaken(3));
    EXPECT_EQ(alertsOf(listener.taken()), std::vector<Alert>(fourAlerts.begin() + 1, fourAlerts.end()));
    EXPECT_TRUE(numberedInOrder(listener.taken(), 1));
    EXPECT_EQ(listener.received().size(), 4u);
}

TEST_F(Delivery, DoesNotKeepTheHostFromEnding)
{
    listener.listen();
    listener.reply(Reply::Hold, 4);
    serveFile();
    subscribe(listener, "held");
    file.box(0)["fanStatus"] = "failed";
    pass();
    ASSERT_TRUE(listener.waitForReceived(1));
    EXPECT_EQ(machine.terminate(), 0);
}
