#include "TestClock.h"

#include <algorithm>

namespace KDV {

TestClock::~TestClock() = default;

PassClock::Time TestClock::now()
{
    std::lock_guard<std::mutex> lock(_mutex);
    if (_started) _lookers.push_back(std::this_thread::get_id());
    _changed.notify_all();
    return _now;
}

void TestClock::waitUntil(pthread_mutex_t& mutex, pthread_cond_t& wake, Time time)
{
    {
        std::lock_guard<std::mutex> lock(_mutex);
        _timeKeeper = std::this_thread::get_id();
        if (_now >= time) return;
        _awaited = time;
        _theirs = &mutex;
        _wake = &wake;
    }
    _changed.notify_all();
    pthread_cond_wait(&wake, &mutex);
    std::lock_guard<std::mutex> lock(_mutex);
    _awaited = Time(-1);
}

PassClock::Time TestClock::randomPart(Time length)
{
    std::lock_guard<std::mutex> lock(_mutex);
    _stagger = length;
    _started = true;
    return _randomPart;
}

void TestClock::awaitLookAt(Time time)
{
    std::unique_lock<std::mutex> lock(_mutex);
    _changed.wait(lock, [&] { return _awaited == time; });
}

std::size_t TestClock::passes() const
{
    if (_timeKeeper == std::thread::id()) return 0;
    return _lookers.size() - static_cast<std::size_t>(std::count(_lookers.begin(), _lookers.end(), _timeKeeper));
}

void TestClock::awaitPasses(std::size_t count)
{
    std::unique_lock<std::mutex> lock(_mutex);
    _changed.wait(lock, [&] { return passes() >= count; });
}

bool TestClock::isWaitedFor()
{
    std::lock_guard<std::mutex> lock(_mutex);
    return _awaited != Time(-1);
}

void TestClock::moveTo(Time time)
{
    pthread_mutex_t* theirs = nullptr;
    {
        std::lock_guard<std::mutex> lock(_mutex);
        theirs = _theirs;
    }
    pthread_mutex_lock(theirs); // so that the thread is not between its look at the clock and its wait
    {
        std::lock_guard<std::mutex> lock(_mutex);
        _now = time;
    }
    pthread_cond_broadcast(_wake);
    pthread_mutex_unlock(theirs);
}

} // namespace KDV
