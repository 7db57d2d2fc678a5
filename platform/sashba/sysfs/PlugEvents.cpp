#include "sashba/sysfs/PlugEvents.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <libudev.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

namespace KDV {

EventQueue::~EventQueue() = default;

namespace {

constexpr int quietMilliseconds = 100; // a pull is a dozen messages
constexpr int mostBursts = 5;          // but in a storm of them somebody is told from time to time
constexpr int queueBytes = 4 << 20;    // a shelf that comes is hundreds of messages; the kernel may grant less

constexpr const char* subsystems[] = {"scsi",           "scsi_disk",    "scsi_host",    "enclosure",
                                      "sas_end_device", "sas_expander", "raid_devices", "block"};

std::string_view textOrNothing(const char* text) { return text ? text : std::string_view(); }

template <class Handle, Handle* (*unref)(Handle*)>
struct Unref {
    void operator()(Handle* handle) const noexcept { unref(handle); }
};
using Udev = std::unique_ptr<udev, Unref<udev, udev_unref>>;
using Monitor = std::unique_ptr<udev_monitor, Unref<udev_monitor, udev_monitor_unref>>;
using Device = std::unique_ptr<udev_device, Unref<udev_device, udev_device_unref>>;

// The library believes messages of the kernel only, though any process may send some here.
class KernelEvents final : public EventQueue {
public:
    KernelEvents(Udev udev, Monitor monitor) : _udev(std::move(udev)), _monitor(std::move(monitor)) {}
    ~KernelEvents() override;

    int descriptor() const override { return udev_monitor_get_fd(_monitor.get()); }

    bool takePlug() override
    {
        bool plug = false;
        for (;;) {
            errno = 0;
            const Device device(udev_monitor_receive_device(_monitor.get()));
            if (!device) return plug || errno == ENOBUFS; // lost ones may have told of any
            plug = plug || tellsOfPlug(textOrNothing(udev_device_get_action(device.get())),
                                       textOrNothing(udev_device_get_subsystem(device.get())),
                                       textOrNothing(udev_device_get_sysname(device.get())));
        }
    }

private:
    Udev _udev;
    Monitor _monitor;
};

KernelEvents::~KernelEvents() = default;

} // namespace

// "udev" in place of "kernel" would wait for the rules of a daemon that a small system or a container has not.
std::unique_ptr<EventQueue> openKernelEvents()
{
    Udev udev(udev_new());
    Monitor monitor(udev ? udev_monitor_new_from_netlink(udev.get(), "kernel") : nullptr);
    if (!monitor) return nullptr;
    for (const char* subsystem : subsystems) {
        if (udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), subsystem, nullptr) < 0) return nullptr;
    }
    udev_monitor_set_receive_buffer_size(monitor.get(), queueBytes);
    if (udev_monitor_enable_receiving(monitor.get()) < 0) return nullptr;
    return std::make_unique<KernelEvents>(std::move(udev), std::move(monitor));
}

bool tellsOfPlug(std::string_view action, std::string_view subsystem, std::string_view name)
{
    const bool array = subsystem == "block" && name.substr(0, 2) == "md";
    if (std::find(std::begin(subsystems), std::end(subsystems), subsystem) == std::end(subsystems)) return false;
    if (subsystem == "block" && !array && name.substr(0, 2) != "sd") return false;
    if (action == "add" || action == "remove") return true;
    const bool changes = action == "change" || action == "offline" || action == "online";
    return changes && (array || subsystem == "scsi");
}

PlugEvents::PlugEvents(std::function<void()> plugged, std::unique_ptr<EventQueue> queue)
    : _plugged(std::move(plugged)), _queue(std::move(queue))
{
    if (!_queue) return;
    if (pipe2(_end, O_CLOEXEC) != 0) {
        _end[0] = _end[1] = -1;
        return;
    }
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        _thread = std::thread([this] { listen(); });
    } catch (const std::exception&) { // no thread to be had: the next poll sees what an event would have told
        _queue.reset();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

PlugEvents::~PlugEvents()
{
    if (_end[1] >= 0) close(_end[1]); // the thread sees it and ends
    if (_thread.joinable()) _thread.join();
    if (_end[0] >= 0) close(_end[0]);
}

void PlugEvents::listen()
{
    int bursts = 0; // that came since the last call
    for (;;) {
        pollfd waiting[2] = {{_queue->descriptor(), POLLIN, 0}, {_end[0], POLLIN, 0}};
        const int ready = poll(waiting, 2, bursts > 0 ? quietMilliseconds : -1);
        if (ready > 0 && waiting[1].revents != 0) return;
        if (ready > 0 && _queue->takePlug()) ++bursts;
        if (bursts > 0 && (ready == 0 || bursts >= mostBursts)) {
            bursts = 0;
            _plugged();
        }
    }
}

} // namespace KDV
