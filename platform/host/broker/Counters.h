// What a broker counts. Shared with the scopes that may outlive it (those that end with their thread); atomic where
// several threads count, under the mutex where a scope adds its sums at its end.
#pragma once

#include "broker/Broker.h"
#include "broker/Memory.h"

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace KDV::Host {

struct Broker::Counters {
    explicit Counters(Profile profileOfBroker) : profile(profileOfBroker) {}
    ~Counters();

    void keepReleasedClone(Memory* memory); // for checks: freed when many have come after it
    void* track(void* allocation);          // mft allocations, freed with the broker
    bool untrack(void* allocation);

    const Profile profile;
    std::atomic<std::int64_t> liveClones{0};
    std::atomic<std::uint64_t> doubleReleases{0};
    std::atomic<std::uint64_t> usesAfterRelease{0};
    std::atomic<std::uint64_t> lentReleases{0};
    std::atomic<std::uint64_t> foreignReleases{0};
    std::atomic<std::uint64_t> unattachedCalls{0};
    std::atomic<std::uint64_t> droppedProperties{0};
    std::atomic<std::uint64_t> refusedProperties{0};

    std::mutex mutex;
    BrokerStatistics sums; // of ended scopes
    std::deque<Memory*> releasedClones;
    std::vector<void*> allocations;
    std::vector<std::unique_ptr<PropertyInfo>> undeclared;
};

} // namespace KDV::Host
