// The broker's table of operating-system functions (xft), over POSIX threads.
#include "broker/Tables.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <new>
#include <pthread.h>
#include <string>

namespace KDV::Host {
namespace {

char* resolveFileName(const char* libName)
{
    if (!libName) return nullptr;
    const std::string name = std::string("lib") + libName + ".so";
    return strdup(name.c_str());
}

static_assert(sizeof(pthread_t) <= sizeof(CMPI_THREAD_TYPE));
static_assert(sizeof(pthread_key_t) <= sizeof(CMPI_THREAD_KEY_TYPE));

pthread_t threadOf(CMPI_THREAD_TYPE thread)
{
    pthread_t id{};
    std::memcpy(&id, &thread, sizeof id);
    return id;
}

CMPI_THREAD_TYPE newThread(CMPIThreadFunc start, void* parm, int detached)
{
    pthread_t id{};
    if (pthread_create(&id, nullptr, start, parm) != 0) return nullptr;
    if (detached) pthread_detach(id);
    CMPI_THREAD_TYPE thread = nullptr;
    std::memcpy(&thread, &id, sizeof id);
    return thread;
}

int joinThread(CMPI_THREAD_TYPE thread, CMPI_THREAD_RETURN* retval) { return pthread_join(threadOf(thread), retval); }
int exitThread(CMPI_THREAD_RETURN code) { pthread_exit(code); }
int cancelThread(CMPI_THREAD_TYPE thread) { return pthread_cancel(threadOf(thread)); }

int threadSleep(CMPIUint32 msec)
{
    std::timespec left{static_cast<std::time_t>(msec / 1000), static_cast<long>(msec % 1000) * 1000000};
    while (nanosleep(&left, &left) != 0)
        if (errno != EINTR) return errno;
    return 0;
}

static_assert(sizeof(pthread_once_t) == sizeof(int));
int threadOnce(int* once, CMPIThreadOnceFunc function)
{
    return pthread_once(reinterpret_cast<pthread_once_t*>(once), function);
}

// Pegasus: not safe against a second thread, and 1 for success.
int looseOnce(int* once, CMPIThreadOnceFunc function)
{
    if (*once == 0) {
        *once = 1;
        function();
    }
    return 1;
}

int createThreadKey(CMPI_THREAD_KEY_TYPE* key, CMPIThreadKeyCleanupFunc cleanup)
{
    return pthread_key_create(key, cleanup);
}
int destroyThreadKey(CMPI_THREAD_KEY_TYPE key) { return pthread_key_delete(key); }
void* getThreadSpecific(CMPI_THREAD_KEY_TYPE key) { return pthread_getspecific(key); }
int setThreadSpecific(CMPI_THREAD_KEY_TYPE key, void* value) { return pthread_setspecific(key, value); }

CMPI_MUTEX_TYPE newMutex(int)
{
    auto* mutex = new (std::nothrow) pthread_mutex_t;
    if (mutex && pthread_mutex_init(mutex, nullptr) != 0) {
        delete mutex;
        return nullptr;
    }
    return mutex;
}
pthread_mutex_t* mutexOf(CMPI_MUTEX_TYPE mutex) { return static_cast<pthread_mutex_t*>(mutex); }
void destroyMutex(CMPI_MUTEX_TYPE mutex)
{
    pthread_mutex_destroy(mutexOf(mutex));
    delete mutexOf(mutex);
}
void lockMutex(CMPI_MUTEX_TYPE mutex) { pthread_mutex_lock(mutexOf(mutex)); }
void unlockMutex(CMPI_MUTEX_TYPE mutex) { pthread_mutex_unlock(mutexOf(mutex)); }

CMPI_COND_TYPE newCondition(int)
{
    auto* condition = new (std::nothrow) pthread_cond_t;
    if (condition && pthread_cond_init(condition, nullptr) != 0) {
        delete condition;
        return nullptr;
    }
    return condition;
}
pthread_cond_t* conditionOf(CMPI_COND_TYPE cond) { return static_cast<pthread_cond_t*>(cond); }
void destroyCondition(CMPI_COND_TYPE cond)
{
    pthread_cond_destroy(conditionOf(cond));
    delete conditionOf(cond);
}
int condWait(CMPI_COND_TYPE cond, CMPI_MUTEX_TYPE mutex)
{
    return pthread_cond_wait(conditionOf(cond), mutexOf(mutex));
}
int timedCondWait(CMPI_COND_TYPE cond, CMPI_MUTEX_TYPE mutex, struct timespec* wait)
{
    return pthread_cond_timedwait(conditionOf(cond), mutexOf(mutex), wait);
}
int signalCondition(CMPI_COND_TYPE cond) { return pthread_cond_signal(conditionOf(cond)); }

// Pegasus: the provider's mutex stays locked while it waits, so nobody who needs it can signal.
int waitWithoutMutex(CMPI_COND_TYPE cond, CMPI_MUTEX_TYPE)
{
    pthread_mutex_t own = PTHREAD_MUTEX_INITIALIZER;
    pthread_mutex_lock(&own);
    const int rc = pthread_cond_wait(conditionOf(cond), &own);
    pthread_mutex_unlock(&own);
    pthread_mutex_destroy(&own);
    return rc;
}

// Pegasus: just sleeps; a signal does not wake it.
int sleepUntil(CMPI_COND_TYPE, CMPI_MUTEX_TYPE, struct timespec* wait)
{
    int rc = 0;
    do
        rc = clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, wait, nullptr);
    while (rc == EINTR);
    return rc == 0 ? ETIMEDOUT : rc;
}

} // namespace

CMPIBrokerExtFT systemTable(Profile profile)
{
    CMPIBrokerExtFT table{CMPIVersion200,    resolveFileName,   newThread,        joinThread,      exitThread,
                          cancelThread,      threadSleep,       threadOnce,       createThreadKey, destroyThreadKey,
                          getThreadSpecific, setThreadSpecific, newMutex,         destroyMutex,    lockMutex,
                          unlockMutex,       newCondition,      destroyCondition, condWait,        timedCondWait,
                          signalCondition,   nullptr,           nullptr,          nullptr,         nullptr};
    if (profile == Profile::Sfcb) {
        table.joinThread = nullptr;
        table.exitThread = nullptr;
        table.cancelThread = nullptr;
        table.threadSleep = nullptr;
        table.signalCondition = nullptr;
    } else if (profile == Profile::Pegasus) {
        table.threadOnce = looseOnce;
        table.condWait = waitWithoutMutex;
        table.timedCondWait = sleepUntil;
    }
    return table;
}

} // namespace KDV::Host
