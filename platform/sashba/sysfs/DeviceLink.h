// How a device is asked: an open device that takes commands, and what opens it. One way goes to the device nodes of the
// machine, another to pages captured beside a captured tree, and tests have their own. A link is used by the one thread
// that opened it; opening and every question may block, so they happen on the asking threads only. Throws
// std::bad_alloc only.
#pragma once

#include "sashba/sysfs/DeviceAnswer.h"
#include "sashba/sysfs/LiveMachine.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace KDV {

enum class AskedKind : std::uint8_t { Disk, Enclosure, FirmwareVolume };

struct AskedDevice {
    std::string key; // see askingKey()
    AskedKind kind = AskedKind::Disk;
    std::string path; // of the SCSI device
    std::string node; // "/dev/sg3"; empty when it has none
    Transport transport = Transport::Unknown;
    std::string enclosure; // directory in the enclosure class
    bool spins = true;     // false for a solid-state disk
};

struct ReadyReply {
    Readiness readiness = Readiness::Unknown;
    bool denied = false;
    bool timedOut = false;
    bool failurePredicted = false; // it said so in its sense data
};

class DeviceLink {
public:
    DeviceLink() = default;
    virtual ~DeviceLink();
    DeviceLink(const DeviceLink&) = delete;
    DeviceLink& operator=(const DeviceLink&) = delete;

    virtual ReadyReply testUnitReady() = 0;
    virtual std::string logPage(std::uint8_t code) = 0; // empty: not to be had, like the following ones
    virtual std::string enclosurePage(std::uint8_t code) = 0;
    virtual std::string smartctlOutput() = 0;
};

class DeviceOpener {
public:
    DeviceOpener() = default;
    virtual ~DeviceOpener();
    DeviceOpener(const DeviceOpener&) = delete;
    DeviceOpener& operator=(const DeviceOpener&) = delete;

    // Any thread. Null: it cannot be opened, and the reply says why.
    virtual std::unique_ptr<DeviceLink> open(const AskedDevice& device, std::chrono::milliseconds deadline,
                                             ReadyReply& reply) = 0;
};

} // namespace KDV
