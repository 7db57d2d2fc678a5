// The indications that wait for one listener, and the thread that delivers them one after the other. put() never waits
// for the listener: what does not fit pushes out the oldest, and every loss is counted and seen by the listener as a
// gap in the sequence numbers. A message that fails is tried again, with growing pauses, before any later one; the
// pauses and the age at which one is given up are limited.
//
// The thread starts with the first message. Any thread may call; the queue's own lock is held for moments only.
#pragma once

#include "indications/ListenerConnection.h"
#include "indications/SubscriptionRecords.h"
#include "logger/Logger.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace KDV::Host {

// Time as the queue sees it, so that tests need not wait.
class DeliveryClock {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    virtual ~DeliveryClock();
    virtual TimePoint now();
    // Until the time has come or `ready` says so.
    virtual void waitUntil(std::condition_variable& signal, std::unique_lock<std::mutex>& lock, TimePoint until,
                           const std::function<bool()>& ready);
};

struct RetryOptions {
    std::chrono::milliseconds firstPause{1'000};
    std::chrono::milliseconds longestPause{60'000};
    unsigned attempts = 0;                   // for one message; 0: any number
    std::chrono::seconds giveUpAfter{3'600}; // since it was put into the queue
};

// The pause after that many failures in a row: doubled each time.
std::chrono::milliseconds retryPause(const RetryOptions& options, unsigned failures) noexcept;

struct QueueLimits {
    std::size_t messages = 1'000;
    std::size_t bytes = 8u << 20;
};

struct DestinationCounters {
    std::uint64_t delivered = 0;
    std::uint64_t failedAttempts = 0;
    std::uint64_t dropped = 0;   // pushed out by later ones, or too large
    std::uint64_t expired = 0;   // given up after too many attempts or too much time
    std::uint64_t refused = 0;   // the listener will never take it
    std::uint64_t withdrawn = 0; // its subscription or destination went away, or the host ended
    std::size_t waiting = 0;
    std::size_t waitingBytes = 0;
    bool failing = false; // the last attempt failed
};

struct Export {
    std::shared_ptr<const std::string> instance; // INSTANCE without its end tag, shared by all who get it
    std::string filterName;
    std::shared_ptr<const SubscriptionKey> subscription;
    std::chrono::seconds giveUpAfter{0}; // shorter than the queue's own limit; 0: the queue's
};

class DestinationQueue {
public:
    struct Setup {
        std::string name; // for log lines and for the listener: the context of the sequence
        std::string sequenceContext;
        QueueLimits limits;
        RetryOptions retry;
        DeliveryClock* clock = nullptr; // not owned; null: the system's
        // Called on the queue's thread, without its lock, when a message was given up after its last attempt.
        std::function<void(const SubscriptionKey&)> gaveUp;
    };

    DestinationQueue(Setup setup, std::unique_ptr<ListenerConnection> connection, Logger log);
    ~DestinationQueue(); // abandons what is left
    DestinationQueue(const DestinationQueue&) = delete;
    DestinationQueue& operator=(const DestinationQueue&) = delete;

    void put(Export message);
    void withdraw(const SubscriptionKey& subscription); // takes out what waits for it
    // Goes on delivering until the queue is empty or the time has come; returns at once.
    void close(std::chrono::steady_clock::time_point deadline);
    // Drops what waits and ends the attempt being made; returns at once.
    void abandon();
    // The thread has nothing more to do: join() does not wait.
    bool ended() const;
    // Waits for the thread, after close() until its deadline at most. Not on the queue's own thread.
    void join();
    DestinationCounters counters() const;

private:
    struct Item {
        Export content;
        std::string tail;
        std::uint64_t number;
        DeliveryClock::TimePoint put;
        unsigned attempts = 0;
        std::size_t bytes() const { return content.instance->size() + tail.size(); }
    };
    using Lock = std::unique_lock<std::mutex>;

    void run();
    void deliverFirst(Lock& lock);
    void report(const ExportAnswer& answer);
    void settle(Lock& lock, const ExportAnswer& answer);
    void pause(Lock& lock);
    void removeFirst();
    void startThread();
    bool mustEnd() const;
    bool isLastAttempt(const Item& item) const;
    void dropOldest(std::uint64_t& dropped);

    Setup _setup;
    std::unique_ptr<ListenerConnection> _connection;
    Logger _log;
    DeliveryClock _systemClock;
    DeliveryClock& _clock;

    mutable std::mutex _mutex; // guards everything below
    std::condition_variable _signal;
    std::deque<Item> _items;
    std::size_t _bytes = 0;
    std::uint64_t _nextNumber = 0;
    bool _sending = false;        // the first item is with the connection
    bool _firstWithdrawn = false; // while it is sent: not to be tried again
    unsigned _failures = 0;       // in a row
    bool _dropLogged = false;
    bool _closing = false;
    bool _abandoned = false;
    bool _running = false; // a thread was started and has not come to its end
    std::chrono::steady_clock::time_point _deadline{};
    DestinationCounters _counters;
    std::thread _thread;
};

} // namespace KDV::Host
