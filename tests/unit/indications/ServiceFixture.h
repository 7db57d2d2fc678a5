// A broker with the interop classes and an alert class, a recording provider for it, and the service between them.
#pragma once

#include "DeliveryFakes.h"
#include "RecordingProvider.h"
#include "TemporaryDirectory.h"
#include "broker/CollectingSink.h"
#include "indications/Refusal.h"
#include "indications/SubscriptionProvider.h"

#include <atomic>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KDV::Host {

class ServiceFixture : public testing::Test {
protected:
    static constexpr const char* staticName = "VNR:KDV_SAS:AllAlerts";

    ServiceFixture()
    {
        const std::string schema = KDV_SOURCE_DIR "/schema/";
        repository.loadFile(schema + "core/cim-core.mof", "interop");
        repository.addAlias("root/interop", "interop");
        repository.loadFile(schema + "core/cim-core.mof", "root/vnr");
        repository.loadFile(schema + "indication.mof", "root/vnr");
        broker = std::make_unique<Broker>(repository, BrokerOptions{Profile::Standard, true});
        recorder = std::make_unique<RecordingProvider>(*broker);
        options.stateDirectory = directory.path();
        options.systemName = "testhost";
        options.journal.clear();
        options.clock = &clock;
        options.microseconds = [this] { return time.load(); };
        options.connect = [this](const std::string& url) { return listener(url).connect(); };
        addStaticFilter(options, staticName, "KDV_SASIndication", "root/vnr");
    }
    ~ServiceFixture() override { end(); }

    void begin()
    {
        std::vector<IndicationRegistration> registrations{
            {"Recording", "root/vnr", "KDV_SASIndication", [this](Outcome&) { return recorder->table(); }}};
        service = std::make_unique<IndicationService>(*broker, options, std::move(registrations));
        provider = std::make_unique<SubscriptionProvider>(*service);
        broker->setIndicationSink(service.get());
        service->start();
    }
    void end()
    {
        if (service) service->stop();
        broker->setIndicationSink(nullptr);
        provider.reset();
        service.reset();
    }
    void restart()
    {
        end();
        begin();
    }

    ScriptedListener& listener(const std::string& url)
    {
        auto& found = listeners[url];
        if (!found) found = std::make_unique<ScriptedListener>();
        return *found;
    }

    // Records as a client would make them.
    ElementKey key(const char* className, const std::string& name) const
    {
        return {"CIM_ComputerSystem", "testhost", className, name};
    }
    FilterRecord filter(const std::string& name, const std::string& query = "SELECT * FROM KDV_SASIndication") const
    {
        FilterRecord record;
        record.key = key(InteropClass::filter, name);
        record.query = query;
        record.queryLanguage = "DMTF:CQL";
        record.sourceNamespaces = {"root/vnr"};
        return record;
    }
    DestinationRecord destination(const std::string& name) const
    {
        DestinationRecord record;
        record.key = key(InteropClass::destination, name);
        record.url = "http://" + name + "/";
        return record;
    }
    SubscriptionRecord subscription(const std::string& filterName, const std::string& destinationName) const
    {
        SubscriptionRecord record;
        record.className = InteropClass::subscription;
        record.key = {key(InteropClass::filter, filterName), key(InteropClass::destination, destinationName)};
        return record;
    }
    SubscriptionRecord toCollection(const std::string& destinationName) const
    {
        SubscriptionRecord record = subscription("", destinationName);
        record.className = InteropClass::collectionSubscription;
        record.key.filter = collectionKey(staticName);
        return record;
    }
    static int refusal(const std::function<void()>& call, std::string* text = nullptr)
    {
        try {
            call();
        } catch (const Refusal& refused) {
            if (text) *text = refused.what();
            return refused.rc();
        }
        return 0;
    }
    template <class Condition>
    static void waitUntil(Condition condition)
    {
        while (!condition()) // the test's own time limit ends it
            std::this_thread::yield();
    }

    TemporaryDirectory directory;
    ClassRepository repository;
    std::unique_ptr<Broker> broker;
    std::unique_ptr<RecordingProvider> recorder;
    JumpClock clock;
    std::atomic<std::int64_t> time{1'800'000'000'000'000};
    std::map<std::string, std::unique_ptr<ScriptedListener>> listeners;
    IndicationOptions options;
    std::unique_ptr<IndicationService> service;
    std::unique_ptr<SubscriptionProvider> provider;
};

} // namespace KDV::Host
