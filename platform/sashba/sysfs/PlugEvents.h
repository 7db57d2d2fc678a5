// Hears of disks that come and go from the kernel itself, through libudev: neither its daemon nor a privilege is
// needed. A thread of its own calls back at the end of each burst of events. Making and ending it never waits for a
// device; the call-back may come once more while the destructor runs, not after it.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <thread>

namespace KDV {

// A queue of events behind a file descriptor. Used by the one thread that reads it.
class EventQueue {
public:
    EventQueue() = default;
    virtual ~EventQueue();
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    virtual int descriptor() const = 0; // becomes readable with the next event
    virtual bool takePlug() = 0;        // takes all there are, never blocks; true when one tells of a plug
};

// The kernel's own events; null when it lets nobody listen, as in some containers.
std::unique_ptr<EventQueue> openKernelEvents();

class PlugEvents {
public:
    explicit PlugEvents(std::function<void()> plugged, std::unique_ptr<EventQueue> queue = openKernelEvents());
    ~PlugEvents();
    PlugEvents(const PlugEvents&) = delete;
    PlugEvents& operator=(const PlugEvents&) = delete;

    bool listening() const noexcept { return _thread.joinable(); }

private:
    void listen();

    std::function<void()> _plugged;
    std::unique_ptr<EventQueue> _queue;
    int _end[2] = {-1, -1};
    std::thread _thread;
};

// An event that tells of a disk, an enclosure or an md array that came, went or changed. The name is the kernel's.
bool tellsOfPlug(std::string_view action, std::string_view subsystem, std::string_view name);

} // namespace KDV
