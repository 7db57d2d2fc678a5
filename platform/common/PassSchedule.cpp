#include "common/PassSchedule.h"

#include "common/AutoMutex.h"

#include <exception>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace KDV {
namespace {

// Contexts that only the broker could free, when it may no longer be called. Kept where leak checkers find them.
void abandon(const CMPIContext* context)
{
    static std::mutex& mutex = *new std::mutex;
    static auto& contexts = *new std::vector<const CMPIContext*>;
    std::lock_guard<std::mutex> lock(mutex);
    contexts.push_back(context);
}

} // namespace

PassSchedule::PassSchedule(const Logger& logger, const Timing& timing, std::shared_ptr<PassClock> clock)
    : _logger(logger), _timing(timing), _clock(std::move(clock)), _timetable(timing.interval)
{
    pthread_mutex_init(&_mutex, nullptr);
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&_wake, &attributes);
    pthread_condattr_destroy(&attributes);
}

PassSchedule::~PassSchedule()
{
    pthread_cond_destroy(&_wake);
    pthread_mutex_destroy(&_mutex);
}

void PassSchedule::takeContext(const CMPIContext* context) noexcept
{
    if (!context || _stopped || !_wantsContext.exchange(false)) return;
    PassOutcome failure;
    const CMPIContext* prepared = nullptr;
    try {
        const CMPIBroker* const broker = _target.broker;
        if (broker->bft->prepareAttachThread) prepared = broker->bft->prepareAttachThread(broker, context);
        if (prepared)
            useContext(prepared);
        else
            failure = "the broker prepares no context for a thread; there are no passes until it does";
    } catch (const std::exception& exception) {
        abandon(prepared); // the schedule did not take it
        failure = exception.what();
    }
    if (failure.empty()) return;
    report(failure);
    _wantsContext = true;
}

void PassSchedule::useContext(const CMPIContext* prepared)
{
    const AutoMutex lock(_mutex);
    if (_stopped || _context) {
        abandon(prepared);
        return;
    }
    // What may fail comes first: then the next operation tries again with a context of its own.
    if (!_keepsTime) {
        const PassClock::Time now = _clock->now();
        const PassClock::Time delay = _clock->randomPart(_timing.stagger);
        startThread(timeThread);
        _keepsTime = true;
        _timetable.start(now, delay);
    }
    _context = prepared;
    pthread_cond_broadcast(&_wake);
}

void PassSchedule::request() noexcept
{
    const AutoMutex lock(_mutex);
    _timetable.request();
    pthread_cond_broadcast(&_wake);
}

void PassSchedule::stop() noexcept
{
    const AutoMutex lock(_mutex);
    _stopped = true;
    if (_context) abandon(std::exchange(_context, nullptr));
    pthread_cond_broadcast(&_wake);
}

// The new thread holds the schedule.
void PassSchedule::startThread(void* (*run)(void*))
{
    auto self = std::make_unique<std::shared_ptr<PassSchedule>>(shared_from_this());
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const int error = pthread_create(&thread, &attributes, run, self.get());
    pthread_attr_destroy(&attributes);
    if (error != 0) throw std::system_error(error, std::generic_category(), "no thread for passes");
    self.release();
}

void* PassSchedule::timeThread(void* argument) noexcept
{
    const std::unique_ptr<std::shared_ptr<PassSchedule>> self(static_cast<std::shared_ptr<PassSchedule>*>(argument));
    (*self)->keepTime();
    return nullptr;
}

void* PassSchedule::passThread(void* argument) noexcept
{
    const std::unique_ptr<std::shared_ptr<PassSchedule>> self(static_cast<std::shared_ptr<PassSchedule>*>(argument));
    (*self)->runPass();
    return nullptr;
}

void PassSchedule::keepTime() noexcept
{
    PassOutcome failure;
    pthread_mutex_lock(&_mutex);
    while (!_stopped) {
        const PassClock::Time now = _clock->now();
        if (_context && _timetable.takePass(now))
            failure = startPass(now);
        else
            _clock->waitUntil(_mutex, _wake, _context ? _timetable.nextLook() : PassClock::never);
        if (failure.empty()) continue;
        pthread_mutex_unlock(&_mutex);
        report(std::exchange(failure, {}));
        pthread_mutex_lock(&_mutex);
    }
    pthread_mutex_unlock(&_mutex);
}

// With the mutex held. The pass that could not start is made up for by the next one.
PassOutcome PassSchedule::startPass(PassClock::Time now) noexcept
{
    try {
        startThread(passThread);
        return {};
    } catch (const std::exception& exception) {
        _timetable.passEnded(now);
        return exception.what();
    }
}

void PassSchedule::runPass() noexcept
{
    pthread_mutex_lock(&_mutex);
    const CMPIContext* const context = std::exchange(_context, nullptr);
    pthread_mutex_unlock(&_mutex);
    if (context) { // else stopped in between
        const PassOutcome outcome = runAttached(context);
        if (!_stopped) report(outcome);
    }
    const AutoMutex lock(_mutex);
    _timetable.passEnded(_clock->now());
    pthread_cond_broadcast(&_wake);
}

// After stop the broker is left alone: what is not detached then stays with the server, which is about to end.
PassOutcome PassSchedule::runAttached(const CMPIContext* context) noexcept
{
    const CMPIBroker* const broker = _target.broker;
    const CMPIStatus attached = broker->bft->attachThread(broker, context);
    if (attached.rc != CMPI_RC_OK) {
        abandon(context);
        _wantsContext = true;
        return refusal("the broker attaches no thread", attached);
    }
    PassOutcome outcome;
    if (!_stopped) {
        prepareNext(context);
        outcome = callWorker(_target, context, _stopped);
    }
    if (_stopped)
        abandon(context);
    else
        broker->bft->detachThread(broker, context); // frees the context too
    return outcome;
}

// The context of this pass ends with it; the next pass needs another.
void PassSchedule::prepareNext(const CMPIContext* context) noexcept
{
    const CMPIContext* const prepared = _target.broker->bft->prepareAttachThread(_target.broker, context);
    if (!prepared) {
        _wantsContext = true;
        return;
    }
    const AutoMutex lock(_mutex);
    if (_stopped || _context) {
        abandon(prepared);
        return;
    }
    _context = prepared;
    pthread_cond_broadcast(&_wake); // the thread that keeps the time looks for passes that fall due meanwhile
}

void PassSchedule::report(const PassOutcome& outcome) noexcept
{
    {
        const AutoMutex lock(_mutex);
        if (_reported && outcome == _lastOutcome) return;
        _reported = true;
        _lastOutcome = outcome;
    }
    if (outcome.empty())
        _logger.info("passes go well");
    else
        _logger.error("a pass failed: %s", outcome.c_str());
}

} // namespace KDV
