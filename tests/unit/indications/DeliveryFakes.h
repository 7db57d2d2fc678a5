// What stands in for time and for a listener where a test wants to decide about both.
#pragma once

#include "indications/DestinationQueue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace KDV::Host {

constexpr std::chrono::seconds patience{120};

// Every pause is over at once, and the clock says that its time has passed.
class JumpClock : public DeliveryClock {
public:
    TimePoint now() override
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _now;
    }
    void waitUntil(std::condition_variable&, std::unique_lock<std::mutex>&, TimePoint until,
                   const std::function<bool()>&) override
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _pauses.push_back(std::chrono::duration_cast<std::chrono::milliseconds>(until - _now).count());
        _now = until;
    }
    std::vector<long> pauses()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _pauses;
    }

private:
    std::mutex _mutex;
    TimePoint _now{std::chrono::hours(1)};
    std::vector<long> _pauses;
};

// Answers as told, then with Delivered. Behind a closed gate every attempt waits until the gate opens or it is
// cancelled.
class ScriptedListener {
public:
    std::unique_ptr<ListenerConnection> connect() { return std::make_unique<Connection>(*this); }

    void answer(ExportOutcome outcome, unsigned times = 1)
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _script.insert(_script.end(), times, outcome);
    }
    void closeGate()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _open = false;
    }
    void openGate()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _open = true;
        _signal.notify_all();
    }
    bool waitForAttempts(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(_mutex);
        return _signal.wait_for(lock, patience, [&] { return _attempts.size() >= count; });
    }
    std::vector<std::string> attempts()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _attempts;
    }
    std::vector<std::string> delivered()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _delivered;
    }
    std::string lastMessage()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _lastMessage;
    }

private:
    class Connection : public ListenerConnection {
    public:
        explicit Connection(ScriptedListener& listener) : _listener(listener) {}
        ExportAnswer send(const std::string& message, const std::string& id) override
        {
            std::unique_lock<std::mutex> lock(_listener._mutex);
            _listener._attempts.push_back(id);
            _listener._lastMessage = message;
            _listener._signal.notify_all();
            _listener._signal.wait(lock, [this] { return _listener._open || _listener._cancelled; });
            ExportOutcome outcome = ExportOutcome::Delivered;
            if (_listener._cancelled) {
                outcome = ExportOutcome::Later;
            } else if (!_listener._script.empty()) {
                outcome = _listener._script.front();
                _listener._script.pop_front();
            }
            if (outcome == ExportOutcome::Delivered) _listener._delivered.push_back(id);
            return {outcome, outcome == ExportOutcome::Delivered ? "" : "as told"};
        }
        void cancel() noexcept override
        {
            const std::lock_guard<std::mutex> lock(_listener._mutex);
            _listener._cancelled = true;
            _listener._signal.notify_all();
        }

    private:
        ScriptedListener& _listener;
    };

    std::mutex _mutex;
    std::condition_variable _signal;
    std::deque<ExportOutcome> _script;
    std::vector<std::string> _attempts;
    std::vector<std::string> _delivered;
    std::string _lastMessage;
    bool _open = true;
    bool _cancelled = false;
};

inline Export exportOf(const std::string& text, const std::string& subscription = "s")
{
    SubscriptionKey key;
    key.filter.name = subscription;
    Export message;
    message.instance = std::make_shared<const std::string>("<INSTANCE CLASSNAME=\"X\"><!--" + text + "-->");
    message.filterName = "filter";
    message.subscription = std::make_shared<const SubscriptionKey>(key);
    return message;
}

// Ends the queue when everything in it was delivered or given up.
inline DestinationCounters finish(DestinationQueue& queue)
{
    queue.close(std::chrono::steady_clock::now() + patience);
    queue.join();
    return queue.counters();
}

} // namespace KDV::Host
