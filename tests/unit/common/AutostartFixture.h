// A server, an auto-start instance and a provider whose passes a test can watch, hold and make fail, under a clock that
// the test moves. One at a time.
#pragma once

#include "TestClock.h"
#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/RequestScope.h"
#include "broker/ResultObject.h"
#include "cmpicpp/CmpiStatus.h"
#include "common/AutostartDecorator.h"
#include "common/KDVUtil.h"
#include "logger/LogSettings.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KDV {

using namespace CmpiCpp;
using namespace std::chrono_literals;

inline const std::string nameSpace = "root/vnr";

inline constexpr char classes[] = R"(
class T_Starter { [Key] string ProviderName; };
class T_AutoStart : T_Starter { string WorkerMethodNameSpace; uint16 WorkerPollInterval;
    uint16 WorkerPollIntervalStagger; };
class T_BadStart : T_Starter { string WorkerMethodNameSpace; uint32 WorkerPollInterval;
    uint16 WorkerPollIntervalStagger; };
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

inline Passes* passes = nullptr; // of the test that runs

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
    {
    }
    void invokeMethod(const CmpiContext&, const CmpiObjectPath& path, const CmpiName& method, const CmpiArgs&,
                      const CmpiMethodResult& result) override
    {
        result.returnData(method == CmpiName("PerformWork") ? passes->run(path.str()) : 1);
    }
};

inline CmpiProvider* makeWorker(const CMPIBroker* broker, const Logger&)
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

inline Host::ClassRepository& load(Host::ClassRepository& repository)
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

} // namespace KDV
