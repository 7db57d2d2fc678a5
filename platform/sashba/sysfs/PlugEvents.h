// Hears of disks that come and go from the kernel itself, over its event socket: no daemon and no privilege is needed.
// A thread of its own calls back at the end of each burst of events. Making and ending it never waits for a device; the
// call-back may come once more while the destructor runs, not after it.
#pragma once

#include "sashba/sysfs/ByteView.h"

#include <functional>
#include <string_view>
#include <thread>

namespace KDV {

class PlugEvents {
public:
    explicit PlugEvents(std::function<void()> plugged);
    ~PlugEvents();
    PlugEvents(const PlugEvents&) = delete;
    PlugEvents& operator=(const PlugEvents&) = delete;

    // The kernel lets the process listen.
    bool listening() const noexcept { return _socket >= 0; }

private:
    void listen();

    std::function<void()> _plugged;
    int _socket = -1;
    int _end[2] = {-1, -1};
    std::thread _thread;
};

// A message of the kernel that tells of a disk, an enclosure or an md array that came, went or changed.
bool tellsOfPlug(std::string_view message);

} // namespace KDV
