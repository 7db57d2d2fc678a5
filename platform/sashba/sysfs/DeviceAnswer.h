// What a device said when it was asked, and what the kernel said of it where that took a command to the device. Plain
// values, made by the threads that ask and read at the next refresh. What was not answered is absent.
#pragma once

#include "sashba/sysfs/SesPages.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace KDV {

enum class Readiness : std::uint8_t {
    Unknown, // not asked yet, or asking was not possible
    Ready,
    Asleep, // answers, but its disk does not turn: nothing more was asked
    NotReady,
    NoConnect, // the adapter no longer reaches it
};

struct SlotState {      // what the enclosure class says of a slot
    std::string status; // "OK", "critical", "not installed", ...
    std::optional<std::uint64_t> fault;
};

struct DeviceAnswer {
    Readiness readiness = Readiness::Unknown;
    bool hung = false;   // did not answer within its time
    bool denied = false; // the process may not ask it

    // Of a disk.
    std::optional<bool> failurePredicted;
    bool warned = false; // a warning short of a predicted failure, for example of its temperature
    std::optional<std::uint32_t> enduranceUsed; // percent
    std::optional<std::uint32_t> powerOnHours;
    std::optional<std::uint16_t> rotation; // as on the Block Device Characteristics page
    std::string serial, firmware;          // where they know more than the kernel's attributes

    // Of an enclosure.
    std::optional<EnclosureState> enclosure;
    std::map<std::string, SlotState> slots; // by the directory of the slot

    // Of a volume of the adapter's firmware.
    std::string raidLevel, raidState;
    std::optional<std::uint64_t> raidProgress; // of a rebuild, as the driver counts it
};

// The answer of a disk that sleeps now. It is asked nothing more, so what it said of its health before stands: a
// failure that it predicted is not taken back by its sleep.
DeviceAnswer asleepAfter(const DeviceAnswer& before);

// Does what clients see of a device's state differ? Figures that move while a device is as it was, and whether its disk
// turns, do not count.
bool differsInState(const DeviceAnswer& one, const DeviceAnswer& other);

// By askingKey(). The values are shared with the threads that ask and never change.
using DeviceAnswers = std::map<std::string, std::shared_ptr<const DeviceAnswer>>;

} // namespace KDV
