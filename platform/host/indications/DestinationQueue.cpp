#include "indications/DestinationQueue.h"

#include <algorithm>
#include <csignal>
#include <system_error>
#include <utility>

namespace KDV::Host {

DeliveryClock::~DeliveryClock() = default;

DeliveryClock::TimePoint DeliveryClock::now() { return std::chrono::steady_clock::now(); }

void DeliveryClock::waitUntil(std::condition_variable& signal, std::unique_lock<std::mutex>& lock, TimePoint until,
                              const std::function<bool()>& ready)
{
    signal.wait_until(lock, until, ready);
}

std::chrono::milliseconds retryPause(const RetryOptions& options, unsigned failures) noexcept
{
    auto pause = options.firstPause;
    for (unsigned i = 1; i < failures && pause < options.longestPause; ++i)
        pause *= 2;
    return std::min(pause, options.longestPause);
}

DestinationQueue::DestinationQueue(Setup setup, std::unique_ptr<ListenerConnection> connection, Logger log)
    : _setup(std::move(setup)), _connection(std::move(connection)), _log(log),
      _clock(_setup.clock ? *_setup.clock : _systemClock)
{
}

DestinationQueue::~DestinationQueue()
{
    abandon();
    join();
}

void DestinationQueue::put(Export message)
{
    std::uint64_t dropped = 0;
    {
        const Lock lock(_mutex);
        if (_closing || _abandoned) {
            ++_counters.withdrawn;
            return;
        }
        const std::uint64_t number = _nextNumber;
        _nextNumber = (_nextNumber + 1) & INT64_MAX; // begins again at 0, as the property is signed
        Item item{std::move(message), {}, number, _clock.now()};
        item.tail = exportTail(item.content.filterName, _setup.sequenceContext, number);
        if (item.bytes() > _setup.limits.bytes || _setup.limits.messages == 0) {
            ++dropped;
        } else {
            _bytes += item.bytes();
            _items.push_back(std::move(item));
            while (_items.size() > _setup.limits.messages || _bytes > _setup.limits.bytes)
                dropOldest(dropped);
        }
        _counters.dropped += dropped;
        startThread();
        if (dropped != 0 && std::exchange(_dropLogged, true)) dropped = 0;
    }
    _signal.notify_all();
    if (dropped != 0) _log.error("%s: the queue is full, indications are being dropped", _setup.name.c_str());
}

// The one that is being sent stays: it may have arrived already. It alone never is too much.
void DestinationQueue::dropOldest(std::uint64_t& dropped)
{
    const std::size_t at = _sending ? 1 : 0;
    _bytes -= _items[at].bytes();
    _items.erase(_items.begin() + static_cast<std::ptrdiff_t>(at));
    ++dropped;
}

void DestinationQueue::startThread()
{
    if (_running || _items.empty()) return;
    try {
        _thread = std::thread([this] { run(); });
        _running = true;
    } catch (const std::system_error& error) {
        // The next message tries again; until then this one waits in the queue.
        _log.error("%s: no thread for delivery: %s", _setup.name.c_str(), error.what());
    }
}

void DestinationQueue::withdraw(const SubscriptionKey& subscription)
{
    const Lock lock(_mutex);
    std::deque<Item> kept;
    for (std::size_t i = 0; i < _items.size(); ++i) {
        Item& item = _items[i];
        const bool withdrawn = *item.content.subscription == subscription;
        const bool beingSent = _sending && i == 0;
        _firstWithdrawn = _firstWithdrawn || (withdrawn && beingSent);
        if (!withdrawn || beingSent) {
            kept.push_back(std::move(item));
            continue;
        }
        _bytes -= item.bytes();
        ++_counters.withdrawn;
    }
    _items = std::move(kept);
    _signal.notify_all();
}

void DestinationQueue::close(std::chrono::steady_clock::time_point deadline)
{
    const Lock lock(_mutex);
    _closing = true;
    _deadline = deadline;
    _signal.notify_all();
}

void DestinationQueue::abandon()
{
    {
        const Lock lock(_mutex);
        _abandoned = true;
        if (!_running) {
            _counters.withdrawn += _items.size();
            _items.clear();
            _bytes = 0;
        }
        _signal.notify_all();
    }
    _connection->cancel();
}

bool DestinationQueue::ended() const
{
    const Lock lock(_mutex);
    return !_running;
}

void DestinationQueue::join()
{
    {
        Lock lock(_mutex);
        if (_closing && !_abandoned) _signal.wait_until(lock, _deadline, [this] { return !_running; });
        if (_running && !_abandoned) {
            _abandoned = true;
            _signal.notify_all();
        }
    }
    _connection->cancel();
    if (_thread.joinable()) _thread.join();
}

DestinationCounters DestinationQueue::counters() const
{
    const Lock lock(_mutex);
    DestinationCounters counters = _counters;
    counters.waiting = _items.size();
    counters.waitingBytes = _bytes;
    counters.failing = _failures != 0;
    return counters;
}

bool DestinationQueue::mustEnd() const
{
    return _abandoned || (_closing && (_items.empty() || std::chrono::steady_clock::now() >= _deadline));
}

void DestinationQueue::run()
{
    // A listener that closes its end must not end the process: libcurl leaves this signal to us.
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    Lock lock(_mutex);
    while (!mustEnd()) {
        if (_items.empty())
            _signal.wait(lock, [this] { return mustEnd() || !_items.empty(); });
        else
            deliverFirst(lock);
    }
    const std::size_t left = _items.size();
    _counters.withdrawn += left;
    _items.clear();
    _bytes = 0;
    if (left != 0) _log.error("%s: ended with %zu indications undelivered", _setup.name.c_str(), left);
    _running = false;
    _signal.notify_all();
}

void DestinationQueue::deliverFirst(Lock& lock)
{
    Item& first = _items.front();
    ++first.attempts;
    const std::string id = std::to_string(first.number);
    const std::string message = exportMessage(id, *first.content.instance, first.tail);
    _sending = true;
    _firstWithdrawn = false;
    lock.unlock();
    ExportAnswer answer;
    try {
        answer = _connection->send(message, id);
    } catch (const std::exception& error) {
        answer = {ExportOutcome::Later, error.what()};
    }
    report(answer);
    lock.lock();
    _sending = false;
    settle(lock, answer);
}

// Without the lock, since a log may be slow. Only this thread changes _failures.
void DestinationQueue::report(const ExportAnswer& answer)
{
    if (answer.outcome == ExportOutcome::Delivered && _failures != 0)
        _log.info("%s: the listener takes indications again", _setup.name.c_str());
    else if (answer.outcome == ExportOutcome::Refused || (answer.outcome == ExportOutcome::Later && _failures == 0))
        _log.error("%s: %s", _setup.name.c_str(), answer.reason.c_str());
}

void DestinationQueue::removeFirst()
{
    _bytes -= _items.front().bytes();
    _items.pop_front();
}

bool DestinationQueue::isLastAttempt(const Item& item) const
{
    const auto own = item.content.giveUpAfter;
    const auto limit = own.count() != 0 && own < _setup.retry.giveUpAfter ? own : _setup.retry.giveUpAfter;
    return (_setup.retry.attempts != 0 && item.attempts >= _setup.retry.attempts) || _clock.now() - item.put >= limit;
}

void DestinationQueue::settle(Lock& lock, const ExportAnswer& answer)
{
    if (answer.outcome == ExportOutcome::Delivered) {
        _failures = 0;
        ++_counters.delivered;
        removeFirst();
        _dropLogged = _dropLogged && !_items.empty();
        return;
    }
    ++_counters.failedAttempts;
    const bool refused = answer.outcome == ExportOutcome::Refused;
    _failures = refused ? 0 : _failures + 1;
    if (_firstWithdrawn) {
        ++_counters.withdrawn;
        removeFirst();
    } else if (refused || isLastAttempt(_items.front())) {
        ++(refused ? _counters.refused : _counters.expired);
        const std::shared_ptr<const SubscriptionKey> subscription = _items.front().content.subscription;
        removeFirst();
        if (_setup.gaveUp && !refused) {
            lock.unlock();
            _setup.gaveUp(*subscription);
            lock.lock();
        }
    }
    if (!refused) pause(lock);
}

// A close ends the pause, so that what can still be delivered is tried at once; a later one ends with join().
void DestinationQueue::pause(Lock& lock)
{
    const bool closing = _closing;
    const auto until = _clock.now() + retryPause(_setup.retry, _failures);
    _clock.waitUntil(_signal, lock, until, [&] { return _abandoned || _closing != closing; });
}

} // namespace KDV::Host
