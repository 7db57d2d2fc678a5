#include "indications/DestinationQueue.h"

#include "DeliveryFakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace KDV::Host;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class DestinationQueueTest : public testing::Test {
protected:
    DestinationQueueTest()
    {
        _setup.name = "listener";
        _setup.sequenceContext = "context";
        _setup.clock = &_clock;
        _setup.gaveUp = [this](const SubscriptionKey& key) { _givenUp.push_back(key.filter.name); };
    }
    std::unique_ptr<DestinationQueue> make()
    {
        return std::make_unique<DestinationQueue>(_setup, _listener.connect(), Logger("indications-test"));
    }

    JumpClock _clock;
    ScriptedListener _listener;
    DestinationQueue::Setup _setup;
    std::vector<std::string> _givenUp; // written on the queue's thread, read after join()
};

} // namespace

TEST_F(DestinationQueueTest, DeliversInOrderWithRisingNumbers)
{
    const auto queue = make();
    for (const char* text : {"a", "b", "c"})
        queue->put(exportOf(text));
    const DestinationCounters counters = finish(*queue);
    EXPECT_EQ(counters.delivered, 3u);
    EXPECT_EQ(counters.waiting, 0u);
    EXPECT_EQ(counters.waitingBytes, 0u);
    EXPECT_THAT(_listener.delivered(), ElementsAre("0", "1", "2"));
    EXPECT_THAT(
        _listener.lastMessage(),
        HasSubstr("<!--c--><PROPERTY NAME=\"IndicationFilterName\" TYPE=\"string\"><VALUE>filter</VALUE></PROPERTY>"
                  "<PROPERTY NAME=\"SequenceContext\" TYPE=\"string\"><VALUE>context</VALUE></PROPERTY>"
                  "<PROPERTY NAME=\"SequenceNumber\" TYPE=\"sint64\"><VALUE>2</VALUE></PROPERTY></INSTANCE>"));
}

TEST_F(DestinationQueueTest, TriesAFailedOneAgainBeforeAnyLaterOneWithGrowingPauses)
{
    _setup.retry = {std::chrono::milliseconds(100), std::chrono::milliseconds(1'000), 0, std::chrono::hours(1)};
    _listener.answer(ExportOutcome::Later, 6);
    const auto queue = make();
    queue->put(exportOf("a"));
    queue->put(exportOf("b"));
    const DestinationCounters counters = finish(*queue);
    EXPECT_THAT(_listener.attempts(), ElementsAre("0", "0", "0", "0", "0", "0", "0", "1"));
    EXPECT_THAT(_clock.pauses(), ElementsAre(100, 200, 400, 800, 1'000, 1'000));
    EXPECT_EQ(counters.delivered, 2u);
    EXPECT_EQ(counters.failedAttempts, 6u);
    EXPECT_FALSE(counters.failing);
}

TEST_F(DestinationQueueTest, BeginsWithShortPausesAgainAfterASuccess)
{
    _setup.retry = {std::chrono::milliseconds(100), std::chrono::milliseconds(1'000), 0, std::chrono::hours(1)};
    for (int i = 0; i < 2; ++i) {
        _listener.answer(ExportOutcome::Later, 2);
        _listener.answer(ExportOutcome::Delivered);
    }
    const auto queue = make();
    queue->put(exportOf("a"));
    queue->put(exportOf("b"));
    finish(*queue);
    EXPECT_THAT(_clock.pauses(), ElementsAre(100, 200, 100, 200));
}

TEST_F(DestinationQueueTest, GivesAMessageUpAfterItsAttempts)
{
    _setup.retry.attempts = 3;
    _listener.answer(ExportOutcome::Later, 4);
    const auto queue = make();
    queue->put(exportOf("a", "first"));
    queue->put(exportOf("b", "second"));
    const DestinationCounters counters = finish(*queue);
    EXPECT_THAT(_listener.attempts(), ElementsAre("0", "0", "0", "1", "1"));
    EXPECT_EQ(counters.expired, 1u);
    EXPECT_EQ(counters.delivered, 1u);
    EXPECT_THAT(_givenUp, ElementsAre("first"));
}

TEST_F(DestinationQueueTest, GivesAMessageUpWhenItIsTooOld)
{
    _setup.retry = {std::chrono::milliseconds(60'000), std::chrono::milliseconds(60'000), 0, std::chrono::seconds(600)};
    _listener.answer(ExportOutcome::Later, 11);
    const auto queue = make();
    queue->put(exportOf("a"));
    const DestinationCounters counters = finish(*queue);
    EXPECT_EQ(counters.expired, 1u);
    EXPECT_EQ(_listener.attempts().size(), 11u); // at 0, 60, ... 600 seconds
}

TEST_F(DestinationQueueTest, GivesUpSoonerWhereTheSubscriptionSaysSo)
{
    _setup.retry = {std::chrono::milliseconds(60'000), std::chrono::milliseconds(60'000), 0, std::chrono::seconds(600)};
    _listener.answer(ExportOutcome::Later, 3);
    const auto queue = make();
    Export message = exportOf("a");
    message.giveUpAfter = std::chrono::seconds(120);
    queue->put(std::move(message));
    finish(*queue);
    EXPECT_EQ(_listener.attempts().size(), 3u);
    EXPECT_EQ(_givenUp.size(), 1u);
}

TEST_F(DestinationQueueTest, DropsWhatTheListenerRefusesWithoutAnotherAttempt)
{
    _listener.answer(ExportOutcome::Refused);
    const auto queue = make();
    queue->put(exportOf("a"));
    queue->put(exportOf("b"));
    const DestinationCounters counters = finish(*queue);
    EXPECT_THAT(_listener.attempts(), ElementsAre("0", "1"));
    EXPECT_EQ(counters.refused, 1u);
    EXPECT_EQ(counters.delivered, 1u);
    EXPECT_THAT(_givenUp, ElementsAre());
    EXPECT_THAT(_clock.pauses(), ElementsAre());
}

TEST_F(DestinationQueueTest, DropsTheOldestWhenItIsFullAndCountsThem)
{
    _setup.limits.messages = 3;
    _listener.closeGate();
    const auto queue = make();
    queue->put(exportOf("0"));
    ASSERT_TRUE(_listener.waitForAttempts(1)); // from now on the first is on its way and cannot be dropped
    for (int i = 1; i < 10; ++i)
        queue->put(exportOf(std::to_string(i)));
    EXPECT_EQ(queue->counters().waiting, 3u);
    _listener.openGate();
    const DestinationCounters counters = finish(*queue);
    EXPECT_THAT(_listener.delivered(), ElementsAre("0", "8", "9"));
    EXPECT_EQ(counters.dropped, 7u);
    EXPECT_EQ(counters.delivered, 3u);
}

TEST_F(DestinationQueueTest, BoundsTheBytesThatItHolds)
{
    _listener.closeGate();
    _setup.limits.bytes = 2'000;
    const auto queue = make();
    queue->put(exportOf("first"));
    ASSERT_TRUE(_listener.waitForAttempts(1));
    for (int i = 0; i < 50; ++i) {
        queue->put(exportOf(std::string(300, 'x')));
        EXPECT_LE(queue->counters().waitingBytes, 2'000u);
    }
    const std::size_t waiting = queue->counters().waiting;
    EXPECT_GT(waiting, 1u);
    queue->put(exportOf(std::string(3'000, 'x'))); // alone too large: the others stay
    EXPECT_EQ(queue->counters().waiting, waiting);
    _listener.openGate();
    const DestinationCounters counters = finish(*queue);
    EXPECT_EQ(counters.delivered, waiting);
    EXPECT_EQ(counters.dropped, 52u - waiting);
}

TEST_F(DestinationQueueTest, TakesIndicationsWhileTheListenerHangs)
{
    _listener.closeGate();
    const auto queue = make();
    queue->put(exportOf("0"));
    ASSERT_TRUE(_listener.waitForAttempts(1));
    for (int i = 0; i < 900; ++i)
        queue->put(exportOf("more")); // would never return if it waited for the gate
    EXPECT_EQ(queue->counters().waiting, 901u);
    _listener.openGate();
    EXPECT_EQ(finish(*queue).delivered, 901u);
}

TEST_F(DestinationQueueTest, WithdrawsWhatWaitsForASubscription)
{
    _listener.closeGate();
    const auto queue = make();
    queue->put(exportOf("0", "gone"));
    ASSERT_TRUE(_listener.waitForAttempts(1));
    queue->put(exportOf("1", "gone"));
    queue->put(exportOf("2", "stays"));
    SubscriptionKey gone;
    gone.filter.name = "gone";
    _listener.answer(ExportOutcome::Later);
    queue->withdraw(gone);
    _listener.openGate();
    const DestinationCounters counters = finish(*queue);
    EXPECT_THAT(_listener.attempts(), ElementsAre("0", "2"));
    EXPECT_EQ(counters.withdrawn, 2u);
    EXPECT_EQ(counters.delivered, 1u);
    EXPECT_EQ(counters.waitingBytes, 0u);
}

TEST_F(DestinationQueueTest, EndsAtTheDeadlineAlthoughTheListenerHangs)
{
    _listener.closeGate();
    const auto queue = make();
    queue->put(exportOf("0"));
    queue->put(exportOf("1"));
    ASSERT_TRUE(_listener.waitForAttempts(1));
    queue->close(std::chrono::steady_clock::now());
    queue->put(exportOf("too late"));
    queue->join();
    const DestinationCounters counters = queue->counters();
    EXPECT_EQ(counters.delivered, 0u);
    EXPECT_EQ(counters.withdrawn, 3u);
    EXPECT_TRUE(queue->ended());
}

TEST_F(DestinationQueueTest, CanBeAbandonedFromTheCallThatTellsOfAFailure)
{
    DestinationQueue* abandoned = nullptr;
    _setup.retry.attempts = 1;
    _setup.gaveUp = [&](const SubscriptionKey&) { abandoned->abandon(); };
    _listener.closeGate();
    _listener.answer(ExportOutcome::Later);
    const auto queue = make();
    abandoned = queue.get();
    queue->put(exportOf("0"));
    ASSERT_TRUE(_listener.waitForAttempts(1));
    queue->put(exportOf("1"));
    _listener.openGate();
    queue->join();
    EXPECT_THAT(_listener.attempts(), ElementsAre("0"));
    EXPECT_EQ(queue->counters().expired, 1u);
    EXPECT_EQ(queue->counters().withdrawn, 1u);
}

TEST_F(DestinationQueueTest, NeedsNoThreadWithoutIndications)
{
    const auto queue = make();
    EXPECT_TRUE(queue->ended());
    EXPECT_EQ(finish(*queue).withdrawn, 0u);
}

TEST(RetryPause, DoublesUpToItsLimitForAnyNumberOfFailures)
{
    RetryOptions options;
    options.firstPause = std::chrono::milliseconds(1'000);
    options.longestPause = std::chrono::milliseconds(60'000);
    EXPECT_EQ(retryPause(options, 1).count(), 1'000);
    EXPECT_EQ(retryPause(options, 2).count(), 2'000);
    EXPECT_EQ(retryPause(options, 6).count(), 32'000);
    EXPECT_EQ(retryPause(options, 7).count(), 60'000);
    EXPECT_EQ(retryPause(options, 4'000'000'000u).count(), 60'000);
}
