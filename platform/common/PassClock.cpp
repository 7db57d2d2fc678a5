#include "common/PassClock.h"

#include <ctime>
#include <random>

namespace KDV {

PassClock::~PassClock() = default;

MonotonicPassClock::~MonotonicPassClock() = default;

PassClock::Time MonotonicPassClock::now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::milliseconds(time.tv_nsec / 1000000);
}

void MonotonicPassClock::waitUntil(pthread_mutex_t& mutex, pthread_cond_t& wake, Time time)
{
    if (time == never) {
        pthread_cond_wait(&wake, &mutex);
        return;
    }
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec until{};
    until.tv_sec = static_cast<time_t>(seconds.count());
    until.tv_nsec = static_cast<long>((time - seconds).count() * 1000000);
    pthread_cond_timedwait(&wake, &mutex, &until);
}

PassClock::Time MonotonicPassClock::randomPart(Time length)
{
    if (length.count() <= 0) return Time(0);
    std::random_device device;
    return Time(std::uniform_int_distribution<Time::rep>(0, length.count() - 1)(device));
}

} // namespace KDV
