// The storage boxes of one HBA, put together from what the scan found and what enclosures answered: devices of the
// enclosure class, enclosure devices that the kernel's driver passed over, expanders without any, and boxes that only
// the adapter's driver names. Two processors of one enclosure are one box. One thread at a time.
#pragma once

#include "sashba/sysfs/DeviceAnswer.h"
#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/Numbering.h"
#include "sashba/sysfs/SysfsTree.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KDV {

struct BoxPlan {
    std::string key;                  // what it is, for its number
    std::optional<std::uint8_t> wish; // the number that the adapter's driver calls it by
    std::uint8_t number = 0;
    std::string port;        // "0", "1E"
    std::uint64_t level = 0; // of its expander
    std::uint64_t id = 0;
    std::string vendor, model, revision, serial;
    std::optional<std::uint64_t> bays;
    std::vector<std::string> enclosures;   // directories in the enclosure class
    std::vector<std::string> expanders;    // directories
    const EnclosureState* state = nullptr; // of the first processor that answered
    std::vector<const SlotState*> slotStates;
    bool hung = false;
};

struct BoxPlace {
    std::size_t box = 0;
    std::optional<std::uint64_t> bay;
};

// In the order of port, level and identity; only boxes that got a number.
std::vector<BoxPlan> planBoxes(const LiveMachine& machine, const LiveHba& hba, const DeviceAnswers& answers,
                               const SysfsTree& tree, BoxNumbering& numbering);

// Where a disk is among these boxes; nothing for one that is directly attached.
std::optional<BoxPlace> placeOf(const ScsiDevice& disk, const std::vector<BoxPlan>& boxes);

// What the box says of the slot of a disk.
const SlotHealth* slotHealthOf(const ScsiDevice& disk, const BoxPlan& box);

// The name of an adapter's port: the number of its lowest phy, which does not change over a re-plug as the kernel's own
// port numbers do.
std::string portName(const std::string& hbaPort, const SysfsTree& tree);

// Under which answers to a device are kept: another device that comes at the same path has another key.
std::string askingKey(const ScsiDevice& device);

} // namespace KDV
