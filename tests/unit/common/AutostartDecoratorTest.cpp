#include "common/AutostartDecorator.h"

#include "TestClock.h"
#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/RequestScope.h"
#include "broker/ResultObject.h"
#include "cmpicpp/CmpiStatus.h"
#include "common/KDVUtil.h"
#include "logger/LogSettings.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace CmpiCpp;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace KDV {
namespace {

const std::string nameSpace = "root/vnr";

constexpr char classes[] = R"(
class T_Starter { [Key] string ProviderName; };
class T_AutoStart : T_Starter { string WorkerMethodNameSpace; uint16 WorkerPollInterval; uint16 WorkerPollIntervalStagger; };
class T_BadStart : T_Starter { string WorkerMethodNameSpace; uint32 WorkerPollInterval; uint16 WorkerPollIntervalStagger; };
class T_Thing { [Key] string Name; };
)";

class AutoStart : public CmpiManagedInstance {
public:
    explicit AutoStart(const std::string& className) : CmpiManagedInstance(className) {}
    CmpiObjectPath getPath() const override
    {
        CmpiObjectPath path = makeCmpiObjectPath(KDVUtil::getBroker(), nameSpace, getClassName());
        path.addKey("ProviderName", "TEST");
        return path;
    }
    CmpiInstance getInstance() override
    {
        CmpiInstance instance = makeCmpiInstance(KDVUtil::getBroker(), getPath());
        instance.addProperty("ProviderName", "TEST");
        instance.addProperty("WorkerMethodNameSpace", nameSpace);
        if (getClassName() == "T_BadStart")
            instance.addProperty("WorkerPollInterval", std::uint32_t{30});
        else
            instance.addProperty("WorkerPollInterval", std::uint16_t{30});
        if (!isIncomplete) instance.addProperty("WorkerPollIntervalStagger", std::uint16_t{28});
        return instance;
    }
    bool isIncomplete = false;
};

// What happens in passes, across threads and providers.
struct Passes {
    std::mutex mutex;
    std::condition_variable changed;
    unsigned begun = 0;
    unsigned ended = 0;
    bool isHeld = false; // passes wait inside the provider
    CMPIUint32 value = 0;
    std::string failure;
    std::vector<std::thread::id> threads;
    std::vector<std::string> calls;
    bool factoryFails = false;
    bool factoryGivesNothing = false;
    std::atomic<int> providers{0};

    void awaitBegun(unsigned count)
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return begun >= count; });
    }
    void awaitEnded(unsigned count)
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return ended >= count; });
    }
    void hold(bool held)
    {
        std::lock_guard<std::mutex> lock(mutex);
        isHeld = held;
        changed.notify_all();
    }
    unsigned count()
    {
        std::lock_guard<std::mutex> lock(mutex);
        return begun;
    }
    CMPIUint32 run(const std::string& call)
    {
        std::unique_lock<std::mutex> lock(mutex);
        ++begun;
        threads.push_back(std::this_thread::get_id());
        calls.push_back(call);
        changed.notify_all();
        changed.wait(lock, [&] { return !isHeld; });
        ++ended;
        changed.notify_all();
        if (!failure.empty()) throw std::runtime_error(failure);
        return value;
    }
};

Passes* passes = nullptr;

class Worker : public CmpiInstanceProvider, public CmpiMethodProvider {
public:
    explicit Worker(const CMPIBroker* broker)
    {
        setBroker(broker);
        ++passes->providers;
    }
    ~Worker() override { --passes->providers; }
    bool cleanup(const CmpiContext&, bool terminating) override { return terminating; }
    void enumInstanceNames(const CmpiContext&, const CmpiObjectPath& path, const CmpiObjectPathResult& result) override
    {
        if (CmpiName(path.getClassName()) == CmpiName("T_Thing")) result.returnObjectPath(path);
    }
    void enumInstances(const CmpiContext&, const CmpiObjectPath&, const char* const*,
                       const CmpiInstanceResult&) override
    {}
    void invokeMethod(const CmpiContext&, const CmpiObjectPath& path, const CmpiName& method, const CmpiArgs&,
                      const CmpiMethodResult& result) override
    {
        result.returnData(method == CmpiName("PerformWork") ? passes->run(path.str()) : 1);
    }
};

CmpiProvider* makeWorker(const CMPIBroker* broker, const Logger&)
{
    if (passes->factoryFails) throw std::runtime_error("no hardware");
    return passes->factoryGivesNothing ? nullptr : new Worker(broker);
}

// A server whose up-calls come back to the provider, or are refused.
class Server : public Host::BrokerUpcalls {
public:
    explicit Server(Host::Broker& broker) : _broker(broker) {}
    std::atomic<CMPIMethodMI*> methods{nullptr};
    std::atomic<int> refusal{0};
    std::atomic<unsigned> calls{0};

    Host::Outcome invokeMethod(const CMPIContext* context, const Host::PathObject& path, const char* method,
                               const CMPIArgs* in, CMPIArgs* out, Host::ResultSink& sink) override
    {
        ++calls;
        if (refusal != 0) return {static_cast<CMPIrc>(refusal.load()), "refused"};
        Host::ResultObject result(_broker, sink, Host::ResultKind::Data);
        CMPIMethodMI* const mi = methods;
        const CMPIStatus status = mi->ft->invokeMethod(mi, context, result.cmpi(), &path, method, in, out);
        if (status.rc != CMPI_RC_OK)
            return {status.rc, status.msg ? status.msg->ft->getCharPtr(status.msg, nullptr) : ""};
        return {};
    }

private:
    Host::Broker& _broker;
};

Host::ClassRepository& load(Host::ClassRepository& repository)
{
    repository.loadText(classes, nameSpace, "autostart.mof");
    return repository;
}

class Autostart : public testing::TestWithParam<Host::Profile> {
protected:
    Autostart() : broker(load(repository), {GetParam(), true}), server(broker)
    {
        KDVUtil::setBroker(broker.cmpi());
        passes = &events;
        broker.setUpcalls(&server);
        const Logger first("test"); // the settings of the process come with the first one
        setLogLevel(LogLevel::info);
        setLogSink([this](LogLevel level, std::string_view, std::string_view text) {
            std::lock_guard<std::mutex> lock(logMutex);
            log.push_back((level == LogLevel::error ? "E " : "I ") + std::string(text));
        });
    }

    ~Autostart() override
    {
        events.hold(false);
        decorator.reset();
        while (clock.use_count() > 1) // the threads end on their own
            std::this_thread::yield();
        setLogSink({});
        setLogLevel(LogLevel::error);
        KDVUtil::setBroker(nullptr);
    }

    void make(CmpiManagedInstance* instance)
    {
        const Host::RequestScope scope(broker, nameSpace);
        decorator.reset(new AutostartDecorator(Logger("test"), broker.cmpi(), makeWorker, instance, clock));
        server.methods = decorator->getMethodMI();
    }

    // An operation of a client: from the first one the schedule has its context.
    std::vector<std::string> names(const std::string& className)
    {
        Host::RequestScope scope(broker, nameSpace);
        Host::CollectingSink sink;
        Host::ResultObject result(broker, sink, Host::ResultKind::ObjectPaths);
        CMPIInstanceMI* const mi = decorator->getInstanceMI();
        const CMPIStatus status =
            mi->ft->enumerateInstanceNames(mi, &scope.context(), result.cmpi(), &scope.path(nameSpace, className));
        EXPECT_EQ(status.rc, CMPI_RC_OK);
        return sink.paths;
    }

    CMPIrc cleanUp(bool terminating)
    {
        Host::RequestScope scope(broker, nameSpace);
        CMPIInstanceMI* const mi = decorator->getInstanceMI();
        return mi->ft->cleanup(mi, &scope.context(), terminating).rc;
    }

    // Runs the first pass, at five seconds.
    void start()
    {
        make(&autostart);
        names("T_Thing");
        clock->awaitLookAt(5s);
        clock->moveTo(5s);
        clock->awaitPasses(1);
        clock->awaitLookAt(35s);
    }

    std::vector<std::string> logged()
    {
        std::lock_guard<std::mutex> lock(logMutex);
        return log;
    }

    void awaitLog(const std::string& line)
    {
        while (true) {
            const std::vector<std::string> lines = logged();
            if (std::find(lines.begin(), lines.end(), line) != lines.end()) return;
            std::this_thread::yield();
        }
    }

    Passes events;
    Host::ClassRepository repository;
    Host::Broker broker;
    Server server;
    std::shared_ptr<TestClock> clock = std::make_shared<TestClock>(5s);
    AutoStart autostart{"T_AutoStart"};
    std::unique_ptr<AutostartDecorator> decorator;
    std::mutex logMutex;
    std::vector<std::string> log;
};

TEST_P(Autostart, CallsTheWorkerFirstAfterAPartOfTheStaggerAndThenAtEveryInterval)
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

TEST_P(Autostart, HasNoPassBeforeAServerCalls)
{
    make(&autostart);
    AutostartDecorator::requestPass();
    EXPECT_FALSE(clock->isWaitedFor());
    EXPECT_EQ(events.count(), 0u);
    names("T_Thing");
    events.awaitEnded(1); // what was asked for before comes at once
    clock->awaitLookAt(5s);
}

TEST_P(Autostart, LeavesNothingBehindInTheBroker)
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

TEST_P(Autostart, CallsTheProviderItselfWhenTheBrokerRefuses)
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

TEST_P(Autostart, LogsAnOutcomeOnceAndAgainWhenItChanges)
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

TEST_P(Autostart, FollowsAPassThatOverrunsAtTheNextFullInterval)
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

TEST_P(Autostart, RunsARequestedPassAtOnceAndRequestsDuringItAsOne)
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

TEST_P(Autostart, IsNotUnloadedWhileItsScheduleRuns)
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

TEST_P(Autostart, StopsForGoodAtATerminatingCleanup)
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

TEST_P(Autostart, StopsWithoutWaitingForAPassInTheBroker)
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

TEST_P(Autostart, KeepsTheProviderAliveForACallInFlightToIt)
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

TEST_P(Autostart, LetsAClientCallTheWorkerBesideIt)
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

TEST_P(Autostart, AnswersForTheAutoStartInstanceItself)
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

TEST_P(Autostart, RefusesOperationsThatTheProviderDoesNotHave)
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

TEST_P(Autostart, PassesOnWhatTheFactoryThrowsAndCanBeMadeAgain)
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

TEST_P(Autostart, IsNotMadeForAnInstanceWithoutATiming)
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

TEST_P(Autostart, TakesRequestsFromAnyThreadWhilePassesRunAndItEnds)
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

INSTANTIATE_TEST_SUITE_P(Servers, Autostart,
                         testing::Values(Host::Profile::Standard, Host::Profile::Sfcb, Host::Profile::Pegasus),
                         [](const auto& profile) {
                             return profile.param == Host::Profile::Standard ? "Standard"
                                    : profile.param == Host::Profile::Sfcb   ? "Sfcb"
                                                                             : "Pegasus";
                         });

} // namespace
} // namespace KDV
