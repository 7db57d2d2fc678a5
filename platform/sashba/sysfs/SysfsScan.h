// Scans a sysfs tree for SAS adapters and what is behind them. A scan reads attributes that the kernel has in memory
// and sends no command to any device, so it may run on the thread that refreshes the records. What does not change
// while a device is there is read once; every scan reads it again for some of the devices in turn, so that a grown disk
// or a link that came late shows soon. One thread at a time; throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/SysfsTree.h"

#include <map>
#include <string>

namespace KDV {

class SysfsScan {
public:
    explicit SysfsScan(const SysfsTree& tree) : _tree(tree) {}

    LiveMachine scan();

private:
    struct Known {
        ScsiDevice device;
        std::uint64_t scan = 0; // the last scan that found it
    };

    void readDevices(LiveMachine& machine);
    const ScsiDevice* read(const std::string& path, bool again);
    void readExpanders(LiveMachine& machine) const;
    void readEnclosures(LiveMachine& machine) const;

    const SysfsTree& _tree;
    std::map<std::string, Known> _known;
    std::string _again; // where the turn of reading again has come to
    std::uint64_t _scans = 0;
};

} // namespace KDV
