// A clock that stands still until a test moves it. The test sees where the thread that keeps the time waits, so nothing
// has to be slept for.
#pragma once

#include "common/PassClock.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

namespace KDV {

class TestClock final : public PassClock {
public:
    explicit TestClock(Time randomPart) : _randomPart(randomPart) {}
    ~TestClock() override;
    Time now() override;
    void waitUntil(pthread_mutex_t& mutex, pthread_cond_t& wake, Time time) override;
    Time randomPart(Time length) override;

    // Waits until the thread waits for exactly this time.
    void awaitLookAt(Time time);
    // Waits until so many passes are over for the schedule: each thread of a pass looks at the clock once, at its end.
    void awaitPasses(std::size_t count);
    void moveTo(Time time);
    bool isWaitedFor();
    Time staggerAsked() const { return _stagger; }

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    std::size_t passes() const; // with the mutex held

    Time _now{0};
    Time _randomPart;
    Time _stagger{-1};
    Time _awaited{-1}; // -1: nobody waits
    bool _started = false;
    std::vector<std::thread::id> _lookers; // since the start
    std::thread::id _timeKeeper;
    pthread_mutex_t* _theirs = nullptr;
    pthread_cond_t* _wake = nullptr;
};

} // namespace KDV
