// Subscriptions at work: what clients create is kept in the store, told to the providers and matched with what they
// deliver; every match goes to its destination's queue, and every indication to the journal and to those who follow the
// local stream. The host makes one, installs it as the broker's indication sink, calls start() once its providers can
// be asked and stop() before they are cleaned up.
//
// Changes take one lock that is held while providers are called. deliver() never takes that lock, so that a provider
// may deliver from anywhere without waiting for a client, a listener or the disk.
#pragma once

#include "broker/Broker.h"
#include "hostxml/XmlFragments.h"
#include "indications/DestinationQueue.h"
#include "indications/FilterActivation.h"
#include "indications/JournalSocket.h"
#include "indications/LocalStream.h"
#include "indications/SubscriptionStore.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KDV::Host {

struct IndicationOptions {
    std::filesystem::path stateDirectory; // exists and belongs to the host
    std::string interopNamespace = "interop";
    std::string systemClass = "CIM_ComputerSystem";
    std::string systemName;                          // the host's; stands in keys that a client leaves out
    std::string identifier = "kdv-cimhost";          // in the journal
    std::string journal = JournalSocket::systemPath; // empty: no journal
    std::optional<StreamOptions> stream;
    // Static filters are active from start() to stop() for journal and stream alone, without any subscription;
    // otherwise only while somebody follows the stream.
    bool followAlways = false;
    std::vector<FilterRecord> staticFilters;
    std::vector<FilterCollectionRecord> collections;
    StoreLimits limits;
    QueueLimits queue;
    RetryOptions retry;
    ConnectionOptions connection;
    std::chrono::milliseconds farewell{3'000}; // for what is still queued at stop()
    // For tests; empty: libcurl, the system's clocks.
    std::function<std::unique_ptr<ListenerConnection>(const std::string& url)> connect;
    DeliveryClock* clock = nullptr;
    std::function<std::int64_t()> microseconds;
};

// A filter "select every <className>" of `nameSpace` under a well-known name, and a collection that holds it: what a
// client needs to subscribe to without making a filter of its own.
void addStaticFilter(IndicationOptions& options, const std::string& name, const std::string& className,
                     const std::string& nameSpace);

// Where the filter looks for its class: at least one name, `interop` if it names none itself.
std::vector<std::string> nameSpacesOf(const FilterRecord& filter, const std::string& interop);

struct SubscriptionView {
    SubscriptionRecord record;
    bool degraded = false; // enabled, but a provider would not have its filter
};

class IndicationService : public IndicationSink {
public:
    IndicationService(Broker& broker, IndicationOptions options, std::vector<IndicationRegistration> registrations);
    ~IndicationService() override; // stops
    IndicationService(const IndicationService&) = delete;
    IndicationService& operator=(const IndicationService&) = delete;

    void start(); // std::system_error if state or stream cannot be had
    void stop();

    Outcome deliver(const CMPIContext* context, std::string_view nameSpace, const InstanceObject& indication) override;

    // What clients ask for; Refusal if it cannot be.
    void add(FilterRecord filter);
    void add(DestinationRecord destination);
    void add(SubscriptionRecord subscription);
    void replace(const SubscriptionRecord& subscription);
    void removeFilter(const ElementKey& key);
    void removeDestination(const ElementKey& key);
    void removeSubscription(const SubscriptionKey& key);

    // Copies of what there is.
    std::vector<FilterRecord> filters();
    std::vector<DestinationRecord> destinations();
    std::vector<SubscriptionView> subscriptions();
    const std::vector<FilterCollectionRecord>& collections() const noexcept { return _store.collections(); }
    std::map<ElementKey, DestinationCounters> counters();
    unsigned followers();

    const IndicationOptions& options() const noexcept { return _options; }
    Broker& broker() const noexcept { return _broker; }
    std::int64_t now() const { return _options.microseconds(); }

private:
    // What deliver() works with: made anew at every change, never changed itself.
    struct Match {
        std::shared_ptr<const Query> query;
        std::vector<const Namespace*> nameSpaces;
        std::shared_ptr<DestinationQueue> queue;
        std::shared_ptr<const SubscriptionKey> subscription;
        std::string filterName;
        std::chrono::seconds giveUpAfter{0};
        std::int64_t expires = INT64_MAX;
    };
    struct Active {
        std::vector<Match> matches;
        bool anybody = false; // some filter is active with some provider
        std::shared_ptr<LocalStream> stream;
    };
    using Lock = std::lock_guard<std::mutex>;

    FilterToActivate toActivate(const FilterRecord& filter) const;
    void checkClass(const FilterRecord& filter, const Query& query) const;
    Outcome activate(const SubscriptionRecord& subscription);
    void deactivate(const SubscriptionRecord& subscription);
    void addQueue(const DestinationRecord& destination);
    void retireQueue(const ElementKey& key);
    void withdraw(const SubscriptionRecord& subscription);
    void dropSubscription(const SubscriptionRecord& subscription);
    void expire();
    void reap();
    // A new Active for deliver(); only then may providers send for it.
    void publish();
    // Before providers get filters for these, since some send as soon as they have one.
    void expect(const std::vector<SubscriptionRecord>& coming);
    std::shared_ptr<Active> whoIsThere();
    Outcome wake(const SubscriptionRecord& subscription); // expects it and activates it
    void giveUp(const SubscriptionRecord& subscription);  // woken, but it could not be kept
    void addMatches(Active& active, const SubscriptionRecord& subscription);
    void deliveryFailed(const SubscriptionKey& key);
    void applyPolicy(const SubscriptionRecord& subscription);
    std::shared_ptr<const Active> active();
    void follow(bool on);
    void exportTo(const Active& active, std::string_view nameSpace, const InstanceObject& indication);
    std::shared_ptr<const std::string> instanceText(std::string_view nameSpace, const InstanceObject& indication,
                                                    const std::vector<std::string>& selected);

    Broker& _broker;
    IndicationOptions _options;
    Logger _log;
    FragmentCache _fragments;
    JournalSocket _journal;

    std::mutex _changes; // guards what follows, up to _activeMutex
    SubscriptionStore _store;
    FilterActivation _activation;
    std::map<ElementKey, std::shared_ptr<DestinationQueue>> _queues;
    std::vector<std::shared_ptr<DestinationQueue>> _retired; // abandoned; joined when their threads have ended
    std::set<SubscriptionKey> _activated;
    std::set<SubscriptionKey> _degraded;
    std::set<ElementKey> _followed; // static filters that are active for journal and stream
    std::int64_t _started = 0;
    bool _running = false;

    std::shared_ptr<LocalStream> _stream;

    std::mutex _activeMutex; // guards the pointer only
    std::shared_ptr<const Active> _active;
};

} // namespace KDV::Host
