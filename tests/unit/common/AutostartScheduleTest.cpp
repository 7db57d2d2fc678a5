#include "AutostartFixture.h"

using testing::ElementsAre;
namespace KDV {
namespace {

class AutostartSchedule : public Autostart {};

TEST_P(AutostartSchedule, CallsTheWorkerFirstAfterAPartOfTheStaggerAndThenAtEveryInterval)
{
    start();
    EXPECT_EQ(clock->staggerAsked(), 28s);
    clock->moveTo(34999ms);
    EXPECT_EQ(events.count(), 1u);
    clock->moveTo(35s);
    clock->awaitPasses(2);
    clock->awaitLookAt(65s);
    clock->moveTo(65s);
    clock->awaitPasses(3);
    EXPECT_EQ(events.ended, 3u);
    EXPECT_EQ(server.calls, 3u);
    EXPECT_EQ(events.calls[0], "//" + KDVUtil::getHostName() + "/root/vnr:T_AutoStart.ProviderName=\"TEST\"");
    for (const std::thread::id& thread : events.threads)
        EXPECT_NE(thread, std::this_thread::get_id());
    awaitLog("I passes go well");
}

TEST_P(AutostartSchedule, HasNoPassBeforeAServerCalls)
{
    make(&autostart);
    AutostartDecorator::requestPass();
    EXPECT_FALSE(clock->isWaitedFor());
    EXPECT_EQ(events.count(), 0u);
    names("T_Thing");
    events.awaitEnded(1); // what was asked for before comes at once
    clock->awaitLookAt(5s);
}

TEST_P(AutostartSchedule, LeavesNothingBehindInTheBroker)
{
    start();
    broker.resetStatistics();
    for (unsigned i = 1; i < 20; ++i) {
        clock->moveTo(5s + i * 30s);
        clock->awaitPasses(i + 1);
        clock->awaitLookAt(5s + (i + 1) * 30s);
    }
    cleanUp(true);
    decorator.reset();
    while (clock.use_count() > 1)
        std::this_thread::yield();
    const Host::BrokerStatistics statistics = broker.statistics();
    EXPECT_TRUE(statistics.lifetimesClean());
    EXPECT_EQ(statistics.unattachedCalls, 0u);
    EXPECT_LE(statistics.liveClones, 2); // the context for a pass that did not come, and that of the last pass
    EXPECT_EQ(statistics.of(statistics.left, Host::ObjectKind::Args), 0u);
    EXPECT_EQ(statistics.of(statistics.left, Host::ObjectKind::ObjectPath), 0u);
}

TEST_P(AutostartSchedule, CallsTheProviderItselfWhenTheBrokerRefuses)
{
    server.refusal = CMPI_RC_ERR_METHOD_NOT_AVAILABLE;
    start();
    EXPECT_EQ(server.calls, 1u);
    EXPECT_EQ(events.count(), 1u);
    awaitLog("I passes go well");
    events.value = 3;
    clock->moveTo(35s);
    awaitLog("E a pass failed: the worker method returned 3");
    EXPECT_EQ(events.count(), 2u);
}

TEST_P(AutostartSchedule, LogsAnOutcomeOnceAndAgainWhenItChanges)
{
    events.failure = "no answer";
    start();
    awaitLog("E a pass failed: the worker method failed: code 1, no answer");
    clock->moveTo(35s);
    clock->awaitPasses(2);
    clock->awaitLookAt(65s);
    {
        std::lock_guard<std::mutex> lock(events.mutex);
        events.failure.clear();
    }
    clock->moveTo(65s);
    awaitLog("I passes go well");
    EXPECT_EQ(events.count(), 3u); // a pass that failed is not run again directly
    EXPECT_THAT(logged(),
                ElementsAre("E a pass failed: the worker method failed: code 1, no answer", "I passes go well"));
}

TEST_P(AutostartSchedule, FollowsAPassThatOverrunsAtTheNextFullInterval)
{
    events.isHeld = true;
    make(&autostart);
    names("T_Thing");
    clock->awaitLookAt(5s);
    clock->moveTo(5s);
    events.awaitBegun(1);
    clock->awaitLookAt(35s);
    clock->moveTo(40s);
    clock->awaitLookAt(65s);
    EXPECT_EQ(events.count(), 1u);
    events.hold(false);
    clock->awaitPasses(1);
    clock->moveTo(65s);
    clock->awaitPasses(2);
    clock->awaitLookAt(95s);
    EXPECT_EQ(events.count(), 2u);
}

TEST_P(AutostartSchedule, RunsARequestedPassAtOnceAndRequestsDuringItAsOne)
{
    start();
    events.hold(true);
    AutostartDecorator::requestPass();
    events.awaitBegun(2);
    AutostartDecorator::requestPass();
    AutostartDecorator::requestPass();
    EXPECT_EQ(events.count(), 2u);
    events.hold(false);
    clock->awaitPasses(3);
    clock->moveTo(35s); // the interval stays where it was
    clock->awaitPasses(4);
    clock->awaitLookAt(65s);
    EXPECT_EQ(events.count(), 4u);
}

INSTANTIATE_TEST_SUITE_P(Servers, AutostartSchedule,
                         testing::Values(Host::Profile::Standard, Host::Profile::Sfcb, Host::Profile::Pegasus),
                         [](const auto& profile) {
                             return profile.param == Host::Profile::Standard ? "Standard"
                                    : profile.param == Host::Profile::Sfcb   ? "Sfcb"
                                                                             : "Pegasus";
                         });

} // namespace
} // namespace KDV
