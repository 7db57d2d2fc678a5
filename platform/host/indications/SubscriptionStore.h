// Keeps filters, destinations and subscriptions, in memory and on disk. A change is on disk before it counts: if the
// file cannot be written nothing has changed. Reading and changing are for one thread at a time (the caller's lock);
// what a client cannot have is Refusal with the status code for it.
#pragma once

#include "indications/StateFile.h"
#include "indications/SubscriptionRecords.h"
#include "logger/Logger.h"

#include <functional>

namespace KDV::Host {

struct StoreLimits {
    std::size_t filters = 256;
    std::size_t destinations = 32; // each has a thread while there is something to deliver
    std::size_t subscriptions = 512;
};

class SubscriptionStore {
public:
    SubscriptionStore(const std::filesystem::path& directory, StoreLimits limits, Logger log);

    // Static filters and collections come from the host at every start, before load().
    void addStatic(FilterRecord filter);
    void addStatic(FilterCollectionRecord collection) { _collections.push_back(std::move(collection)); }
    // What an earlier run left. A file that cannot be understood is put aside and the store begins empty; subscriptions
    // whose filter or handler is missing are dropped with a line in the log.
    void load();

    const SubscriptionState& state() const noexcept { return _state; }
    const std::vector<FilterCollectionRecord>& collections() const noexcept { return _collections; }
    const FilterRecord* findFilter(const ElementKey& key) const noexcept;
    const DestinationRecord* findDestination(const ElementKey& key) const noexcept;
    const SubscriptionRecord* findSubscription(const SubscriptionKey& key) const noexcept;
    const FilterCollectionRecord* findCollection(const std::string& instanceId) const noexcept;
    // One filter, or those of the collection. Null entries do not occur.
    std::vector<const FilterRecord*> filtersOf(const SubscriptionRecord& subscription) const;

    // Throws what add() would throw, and changes nothing.
    void checkNew(const SubscriptionRecord& subscription) const;
    void add(FilterRecord filter);
    void add(DestinationRecord destination);
    void add(SubscriptionRecord subscription);
    void replace(const SubscriptionRecord& subscription); // the one with its keys
    void removeFilter(const ElementKey& key);
    void removeDestination(const ElementKey& key);
    void removeSubscription(const SubscriptionKey& key);

    StateFile& file() noexcept { return _file; }

private:
    template <class Change>
    void change(Change&& apply);
    void dropDangling(SubscriptionState& state) const;
    bool refers(const SubscriptionRecord& subscription, const ElementKey& filter) const;

    StateFile _file;
    StoreLimits _limits;
    Logger _log;
    SubscriptionState _state;
    std::vector<FilterCollectionRecord> _collections;
};

} // namespace KDV::Host
