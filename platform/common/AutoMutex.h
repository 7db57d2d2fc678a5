// Holds a mutex from its construction to the end of its scope. The mutex is not recursive.
#pragma once

#include <pthread.h>

namespace KDV {

class AutoMutex {
public:
    explicit AutoMutex(pthread_mutex_t& mutex) noexcept : _mutex(mutex) { pthread_mutex_lock(&_mutex); }
    AutoMutex(const AutoMutex&) = delete;
    AutoMutex& operator=(const AutoMutex&) = delete;
    ~AutoMutex() { pthread_mutex_unlock(&_mutex); }

private:
    pthread_mutex_t& _mutex;
};

} // namespace KDV
