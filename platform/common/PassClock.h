// Where a schedule of passes gets time and chance from: the monotonic clock of the machine, or what a test puts in its
// place. Used by the thread that keeps the time; waitUntil is called with the mutex held, as a condition wait is.
#pragma once

#include "common/Export.h"

#include <chrono>
#include <pthread.h>

namespace KDV {

class KDV_COMMON_API PassClock {
public:
    using Time = std::chrono::milliseconds; // since any fixed point
    static constexpr Time never = Time::max();

    virtual ~PassClock();
    virtual Time now() = 0;
    // Waits until wake is signalled or the time has come; may return early. wake measures the monotonic clock.
    virtual void waitUntil(pthread_mutex_t& mutex, pthread_cond_t& wake, Time time) = 0;
    // A random part of a length: zero or more, less than the length.
    virtual Time randomPart(Time length) = 0;
};

class MonotonicPassClock final : public PassClock {
public:
    ~MonotonicPassClock() override;
    Time now() override;
    void waitUntil(pthread_mutex_t& mutex, pthread_cond_t& wake, Time time) override;
    Time randomPart(Time length) override;
};

} // namespace KDV
