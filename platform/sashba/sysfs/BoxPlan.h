// The storage boxes of one HBA, put together from what the scan found and what enclosures answered: devices of the
// enclosure class, enclosure devices that the kernel's driver passed over, expanders without any, and boxes that only
// the adapter's driver names. Two processors of one enclosure are one box. One thread at a time.
#pragma once

#include "sashba/sysfs/DeviceAnswer.h"
#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/Numbering.h"
#include "sashba/sysfs/SysfsTree.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KDV {

// The names of an adapter's ports, looked up once for each while the records are made.
class PortNames {
public:
    explicit PortNames(const SysfsTree& tree) : _tree(tree) {}

    // Of the port that leads to the device: the connector that the driver names, else the number of the port's lowest
    // phy, which does not change over a re-plug as the kernel's own port numbers do, else the channel.
    std::string of(const ScsiDevice& device);

    std::string ofPort(const std::string& hbaPort);

private:
    const SysfsTree& _tree;
    std::map<std::string, std::string> _known;
};

struct BoxPlan {
    std::string key;                  // what it is, for its number
    std::optional<std::uint8_t> wish; // the number that the adapter's driver calls it by
    std::uint8_t number = 0;
    std::string port;               // "0", "1E"
    std::uint64_t level = 0;        // of its expander
    std::vector<std::uint64_t> ids; // by which drives may name it
    std::string vendor, model, revision, serial;
    std::optional<std::uint64_t> bays;
    std::vector<std::string> enclosures;       // directories in the enclosure class
    std::vector<std::string> expanders;        // directories
    std::vector<const EnclosureState*> states; // of the processors that answered: each sees its own side of the drives
};

struct BoxPlace {
    std::size_t box = 0;
    std::optional<std::uint64_t> bay;
    bool told = false; // by the box; else the bay is the adapter's idea, or only the wiring
};

// In the order of port, level and identity; only boxes that got a number.
std::vector<BoxPlan> planBoxes(const LiveMachine& machine, const LiveHba& hba, const DeviceAnswers& answers,
                               PortNames& ports, BoxNumbering& numbering);

// Where a disk is among these boxes; nothing for one that is directly attached. The bay is absent where nobody tells
// it.
std::optional<BoxPlace> placeOf(const ScsiDevice& disk, const std::vector<BoxPlan>& boxes);

// What the box says of the slot of a disk.
const SlotHealth* slotHealthOf(const ScsiDevice& disk, const BoxPlan& box);

// Under which answers to a device are kept: another device that comes at the same path has another key.
std::string askingKey(const ScsiDevice& device);

} // namespace KDV
