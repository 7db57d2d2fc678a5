// Runs the passes of one auto-start worker. One thread keeps the time and makes no broker objects; each pass has a
// thread of its own that attaches to the broker and ends with the pass. All are detached and hold the schedule, so that
// one that is still in the broker after stop finds live memory when it comes back; from then on it calls nobody.
//
// A thread may attach only with a context that was prepared while another call was in progress. The schedule takes one
// from the first operation that a server forwards (offer), and starts with it; each pass prepares the one for the next
// pass. Until there is a context nothing runs: servers make a provider because an operation is waiting for it.
//
// Every member may be called from any thread; none waits for a call into the broker but offer, which makes one.
#pragma once

#include "cmpi/Broker.h"
#include "common/PassClock.h"
#include "common/PassTimetable.h"
#include "common/WorkerCall.h"
#include "logger/Logger.h"

#include <atomic>
#include <memory>
#include <pthread.h>
#include <string>

namespace KDV {

class PassSchedule : public std::enable_shared_from_this<PassSchedule> {
public:
    struct Timing {
        PassClock::Time interval;
        PassClock::Time stagger;
    };

    // target is filled by the caller before the first offer.
    PassSchedule(const Logger& logger, const Timing& timing, std::shared_ptr<PassClock> clock);
    PassSchedule(const PassSchedule&) = delete;
    PassSchedule& operator=(const PassSchedule&) = delete;
    ~PassSchedule();

    WorkerTarget& target() noexcept { return _target; }

    // The context of an operation in progress on this thread. Costs one load once the schedule has what it needs.
    void offer(const CMPIContext* context) noexcept
    {
        if (_wantsContext.load(std::memory_order_relaxed)) takeContext(context);
    }

    void request() noexcept;
    void stop() noexcept;
    bool isStopped() const noexcept { return _stopped; }

private:
    void takeContext(const CMPIContext* context) noexcept;
    void useContext(const CMPIContext* prepared);
    void startThread(void* (*run)(void*));
    static void* timeThread(void* argument) noexcept;
    static void* passThread(void* argument) noexcept;
    void keepTime() noexcept;
    PassOutcome startPass(PassClock::Time now) noexcept;
    void runPass() noexcept;
    PassOutcome runAttached(const CMPIContext* context) noexcept;
    void prepareNext(const CMPIContext* context) noexcept;
    void report(const PassOutcome& outcome) noexcept;

    Logger _logger;
    Timing _timing;
    std::shared_ptr<PassClock> _clock;
    WorkerTarget _target;
    std::atomic<bool> _wantsContext{true};
    std::atomic<bool> _stopped{false};

    pthread_mutex_t _mutex; // guards what follows
    pthread_cond_t _wake;
    PassTimetable _timetable;
    bool _keepsTime = false;
    const CMPIContext* _context = nullptr; // for the next pass
    bool _reported = false;
    PassOutcome _lastOutcome;
};

} // namespace KDV
