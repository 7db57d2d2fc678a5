// A complete CMPI broker: the object that providers get as CMPIBroker, over a class repository. The host makes one and
// keeps it until the last provider is cleaned up; cmpi() is the same pointer for its whole life. Calls come from any
// thread that has a RequestScope (or, as Sfcb, from any); settings are made before the first provider call.
#pragma once

#include "broker/ObjectHead.h"
#include "broker/Profile.h"
#include "broker/Upcalls.h"
#include "cmpi/Broker.h"
#include "hostschema/ClassRepository.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace KDV::Host {

struct BrokerOptions {
    Profile profile = Profile::Standard;
    // Released objects are kept apart until their scope ends, so that every later use of them is seen and counted.
    bool checkLifetimes = false;
};

// Counted since the broker was made or resetStatistics() was called. Counts of scopes are added when a scope ends.
struct BrokerStatistics {
    std::array<std::uint64_t, objectKinds> made{};    // by ObjectKind, clones included
    std::array<std::uint64_t, objectKinds> maxLive{}; // the most that one scope held at once
    std::uint64_t maxLiveAll = 0;                     // of all kinds together
    std::uint64_t maxScopeBytes = 0;                  // the most memory that one scope took
    std::uint64_t leftToScope = 0;                    // neither released nor passed on: freed by the end of the scope
    std::array<std::uint64_t, objectKinds> left{};    // the same by kind
    std::int64_t liveClones = 0;                      // now
    std::uint64_t doubleReleases = 0;
    std::uint64_t usesAfterRelease = 0;
    std::uint64_t lentReleases = 0;      // release of a parameter or of a part of another object
    std::uint64_t foreignReleases = 0;   // release on another thread than the one whose scope made the object
    std::uint64_t unattachedCalls = 0;   // objects asked for on a thread without a scope
    std::uint64_t droppedProperties = 0; // not declared by the class, dropped with a warning (Pegasus)
    std::uint64_t refusedProperties = 0; // refused with an error code

    std::uint64_t of(const std::array<std::uint64_t, objectKinds>& counts, ObjectKind kind) const noexcept
    {
        return counts[static_cast<unsigned>(kind)];
    }
    // True if no release went wrong and no released object was used.
    bool lifetimesClean() const noexcept
    {
        return doubleReleases == 0 && usesAfterRelease == 0 && lentReleases == 0 && foreignReleases == 0;
    }
};

class Broker {
public:
    Broker(const ClassRepository& repository, BrokerOptions options);
    ~Broker();
    Broker(const Broker&) = delete;
    Broker& operator=(const Broker&) = delete;

    const CMPIBroker* cmpi() const noexcept;
    static Broker& of(const CMPIBroker* broker) noexcept;
    const ClassRepository& repository() const noexcept { return _repository; }
    Profile profile() const noexcept { return _options.profile; }
    bool checksLifetimes() const noexcept { return _options.checkLifetimes; }

    // Not owned; null puts the default back (7 for up-calls and queries, 1 for indications, silence for the log).
    void setUpcalls(BrokerUpcalls* upcalls) noexcept { _upcalls.store(upcalls); }
    void setIndicationSink(IndicationSink* sink) noexcept { _indications.store(sink); }
    void setSelectCompiler(SelectCompiler* compiler) noexcept { _compiler.store(compiler); }
    void setLogSink(LogSink* sink) noexcept { _log.store(sink); }
    void setRecorder(Recorder* recorder) noexcept { _recorder.store(recorder); }
    BrokerUpcalls* upcalls() const noexcept { return _upcalls.load(); }
    IndicationSink* indicationSink() const noexcept { return _indications.load(); }
    SelectCompiler* selectCompiler() const noexcept { return _compiler.load(); }
    LogSink* logSink() const noexcept { return _log.load(); }
    Recorder* recorder() const noexcept { return _recorder.load(std::memory_order_relaxed); }

    // Fault injection: from now on the n-th call (1 is the next) of a broker or object function that reports a status
    // fails once with this code; releases and the attaching of threads never fail. 0 ends it.
    void failAfter(std::uint64_t n, CMPIrc rc) noexcept;
    bool faultFired() const noexcept { return _faultFired.load(); }

    BrokerStatistics statistics() const;
    void resetStatistics();

    // For the objects of this library.
    struct Tables;
    struct Counters;
    const Tables& tables() const noexcept { return *_tables; }
    Counters& counters() noexcept { return *_counters; }
    const std::shared_ptr<Counters>& sharedCounters() const noexcept { return _counters; }
    bool faultArmed() const noexcept { return _faultCountdown.load(std::memory_order_relaxed) != 0; }
    CMPIrc takeFault() noexcept;                                                  // 0: this call goes well
    const PropertyInfo* undeclaredProperty(std::string_view name, CMPIType type); // lives as long as the broker

private:
    struct Abi;
    const ClassRepository& _repository;
    BrokerOptions _options;
    std::unique_ptr<Tables> _tables;
    std::shared_ptr<Counters> _counters;
    std::unique_ptr<Abi> _abi;
    std::atomic<BrokerUpcalls*> _upcalls{nullptr};
    std::atomic<IndicationSink*> _indications{nullptr};
    std::atomic<SelectCompiler*> _compiler{nullptr};
    std::atomic<LogSink*> _log{nullptr};
    std::atomic<Recorder*> _recorder{nullptr};
    std::atomic<std::uint64_t> _faultCountdown{0};
    std::atomic<int> _faultCode{0};
    std::atomic<bool> _faultFired{false};
};

} // namespace KDV::Host
