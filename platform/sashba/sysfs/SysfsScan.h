// Scans a sysfs tree for SAS adapters and what is behind them. A scan reads attributes that the kernel has in memory
// and sends no command to any device, so it may run on the thread that refreshes the records. What does not change
// while a device is there is read once; every scan reads it again for some of the devices in turn, so that a grown disk
// or a link that came late shows soon. One thread at a time; throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/SysfsTree.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KDV {

class SysfsScan {
public:
    explicit SysfsScan(const SysfsTree& tree) : _tree(tree) {}

    // The machine stays as it is until the next scan.
    const LiveMachine& scan();

private:
    struct Listed { // an entry in the list of SCSI devices
        ScsiAddress address;
        std::string link; // to the device, or to its part in the class
        std::uint64_t identity = 0;
    };

    std::vector<Listed> listDevices() const;
    void listByParts(const std::set<std::uint32_t>& hosts, std::vector<Listed>& listed) const;
    void readDevices();
    bool stillThere(std::size_t known, const Listed& listed) const;
    std::optional<ScsiDevice> readDevice(const Listed& listed) const;
    void readExpanders();
    LiveExpander readExpander(const std::string& path) const;
    void readEnclosures();

    const SysfsTree& _tree;
    LiveMachine _machine;
    std::vector<Listed> _listed; // those of the devices of the machine, in the same order
    std::size_t _again = 0;      // where the turn of reading again has come to
};

} // namespace KDV
