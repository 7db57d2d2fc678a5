#include "AutostartFixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
namespace KDV {
namespace {

class AutostartLife : public Autostart {};

TEST_P(AutostartLife, IsNotUnloadedWhileItsScheduleRuns)
{
    start();
    EXPECT_EQ(cleanUp(false), CMPI_RC_DO_NOT_UNLOAD);
    CMPIMethodMI* const methods = decorator->getMethodMI();
    {
        Host::RequestScope scope(broker, nameSpace);
        EXPECT_EQ(methods->ft->cleanup(methods, &scope.context(), false).rc, CMPI_RC_DO_NOT_UNLOAD);
    }
    clock->moveTo(35s);
    events.awaitEnded(2);
}

TEST_P(AutostartLife, StopsForGoodAtATerminatingCleanup)
{
    start();
    const unsigned calls = server.calls;
    EXPECT_EQ(cleanUp(true), CMPI_RC_OK);
    EXPECT_EQ(cleanUp(true), CMPI_RC_OK);
    AutostartDecorator::requestPass();
    names("T_Thing"); // still answers
    EXPECT_EQ(server.calls, calls);
    EXPECT_EQ(events.count(), 1u);
}

TEST_P(AutostartLife, StopsWithoutWaitingForAPassInTheBroker)
{
    start();
    events.hold(true);
    clock->moveTo(35s);
    events.awaitBegun(2);
    EXPECT_EQ(cleanUp(true), CMPI_RC_OK); // would wait for ever
    decorator.reset();
    EXPECT_EQ(events.ended, 1u);
    events.hold(false);
    events.awaitEnded(2);
}

TEST_P(AutostartLife, KeepsTheProviderAliveForACallInFlightToIt)
{
    server.refusal = CMPI_RC_ERR_NOT_SUPPORTED;
    start();
    events.hold(true);
    clock->moveTo(35s);
    events.awaitBegun(2);
    decorator.reset();
    EXPECT_EQ(events.providers, 1);
    events.hold(false);
    events.awaitEnded(2);
    while (events.providers != 0)
        std::this_thread::yield();
}

TEST_P(AutostartLife, LetsAClientCallTheWorkerBesideIt)
{
    start();
    Host::RequestScope scope(broker, nameSpace);
    Host::CollectingSink sink;
    Host::ResultObject result(broker, sink, Host::ResultKind::Data);
    CMPIMethodMI* const methods = decorator->getMethodMI();
    Host::PathObject& path = scope.path(nameSpace, "T_AutoStart");
    EXPECT_EQ(
        methods->ft
            ->invokeMethod(methods, &scope.context(), result.cmpi(), &path, "performwork", &scope.args(), &scope.args())
            .rc,
        CMPI_RC_OK);
    EXPECT_THAT(sink.values, ElementsAre("0"));
    EXPECT_EQ(events.count(), 2u);
    EXPECT_EQ(events.threads[1], std::this_thread::get_id());
}

TEST_P(AutostartLife, AnswersForTheAutoStartInstanceItself)
{
    make(&autostart);
    std::string own;
    {
        const Host::RequestScope scope(broker, nameSpace);
        own = Host::PathObject::of(autostart.getPath().raw()).text();
    }
    EXPECT_THAT(names("T_AUTOSTART"), ElementsAre(own));
    EXPECT_THAT(names("T_Starter"), ElementsAre(own));
    EXPECT_EQ(names("T_Thing").size(), 1u);
    Host::RequestScope scope(broker, nameSpace);
    Host::CollectingSink sink;
    Host::ResultObject result(broker, sink, Host::ResultKind::Instances);
    CMPIInstanceMI* const mi = decorator->getInstanceMI();
    Host::PathObject& path = scope.path(nameSpace, "T_AutoStart");
    path.addTextKey("ProviderName", "OTHER");
    EXPECT_EQ(mi->ft->getInstance(mi, &scope.context(), result.cmpi(), &path, nullptr).rc, CMPI_RC_ERR_NOT_FOUND);
    path.addTextKey("ProviderName", "TEST");
    const char* wanted[] = {"WorkerPollInterval", nullptr};
    EXPECT_EQ(mi->ft->getInstance(mi, &scope.context(), result.cmpi(), &path, wanted).rc, CMPI_RC_OK);
    EXPECT_EQ(mi->ft->enumerateInstances(mi, &scope.context(), result.cmpi(), &path, nullptr).rc, CMPI_RC_OK);
    ASSERT_EQ(sink.instances.size(), 2u);
    EXPECT_EQ(sink.instances[0].value("WorkerPollInterval"), "30");
    EXPECT_NE(sink.instances[1].find("WorkerMethodNameSpace"), nullptr);
}

TEST_P(AutostartLife, RefusesOperationsThatTheProviderDoesNotHave)
{
    make(&autostart);
    Host::RequestScope scope(broker, nameSpace);
    Host::CollectingSink sink;
    Host::ResultObject result(broker, sink, Host::ResultKind::Instances);
    CMPIAssociationMI* const mi = decorator->getAssociationMI();
    EXPECT_EQ(mi->ft
                  ->associators(mi, &scope.context(), result.cmpi(), &scope.path(nameSpace, "T_Thing"), nullptr,
                                nullptr, nullptr, nullptr, nullptr)
                  .rc,
              CMPI_RC_ERR_NOT_SUPPORTED);
}

TEST_P(AutostartLife, PassesOnWhatTheFactoryThrowsAndCanBeMadeAgain)
{
    events.factoryFails = true;
    EXPECT_THROW(make(&autostart), std::runtime_error);
    events.factoryFails = false;
    events.factoryGivesNothing = true;
    EXPECT_THROW(make(&autostart), std::runtime_error);
    events.factoryGivesNothing = false;
    make(&autostart);
    EXPECT_EQ(events.providers, 1);
}

TEST_P(AutostartLife, IsNotMadeForAnInstanceWithoutATiming)
{
    AutoStart incomplete("T_AutoStart");
    incomplete.isIncomplete = true;
    try {
        make(&incomplete);
        FAIL() << "made without a stagger";
    } catch (const CmpiStatus& status) {
        EXPECT_TRUE(status.code() == CMPI_RC_ERR_NO_SUCH_PROPERTY || status.code() == CMPI_RC_ERR_NOT_FOUND);
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("no value for WorkerPollIntervalStagger"));
    }
    AutoStart wrong("T_BadStart");
    EXPECT_THROW(make(&wrong), std::runtime_error);
    EXPECT_EQ(events.providers, 0);
}

TEST_P(AutostartLife, TakesRequestsFromAnyThreadWhilePassesRunAndItEnds)
{
    start();
    std::atomic<bool> ends{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            while (!ends) {
                AutostartDecorator::requestPass();
                std::this_thread::yield();
            }
        });
    events.awaitEnded(50);
    cleanUp(true);
    decorator.reset();
    ends = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GE(events.ended, 50u);
}

INSTANTIATE_TEST_SUITE_P(Servers, AutostartLife,
                         testing::Values(Host::Profile::Standard, Host::Profile::Sfcb, Host::Profile::Pegasus),
                         [](const auto& profile) {
                             return profile.param == Host::Profile::Standard ? "Standard"
                                    : profile.param == Host::Profile::Sfcb   ? "Sfcb"
                                                                             : "Pegasus";
                         });

} // namespace
} // namespace KDV
