// What sysfs tells about the machine, as plain values before anything is made of it. The scan fills it anew at every
// refresh; paths are those of the tree and name a thing as long as it is there.
#pragma once

#include "sashba/sysfs/PathInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KDV {

struct ScsiAddress {
    std::uint32_t host = 0;
    std::uint32_t channel = 0;
    std::uint32_t target = 0;
    std::uint64_t lun = 0;
};

enum class Transport : std::uint8_t { Unknown, Sata, Sas };

struct ScsiDevice {
    static constexpr std::uint64_t disk = 0x00;
    static constexpr std::uint64_t enclosureServices = 0x0D;
    static constexpr std::uint64_t zonedDisk = 0x14;

    std::string path;
    std::uint64_t identity = 0; // of the directory: a device that comes anew has another one
    ScsiAddress address;
    std::uint64_t type = 0x1F;
    std::string vendor, model, revision, serial;
    std::string wwid;                   // "naa.5000..." and other forms; empty when unusable
    std::string state;                  // "running", "offline", ...
    std::string blockName, genericName; // "sda", "sg0"
    std::uint64_t sectors = 0;          // of 512 bytes
    std::uint64_t logicalBlock = 0, physicalBlock = 0;
    std::optional<std::uint16_t> rotation; // 1 solid state
    bool raidClass = false;                // a volume of the adapter's firmware
    std::string raidLevel;                 // smartpqi: "N/A" for a disk

    // Where it is connected.
    Transport transport = Transport::Unknown;
    std::uint64_t sasAddress = 0;
    std::uint64_t enclosureIdentifier = 0;
    std::optional<std::uint64_t> bay, phy;
    std::string hbaPort;  // directory of port-H:P
    std::string expander; // directory of the nearest expander; empty when there is none
    std::optional<PathInfo> pathInfo;
    std::string slotDirectory; // of its slot in the enclosure class
    std::optional<std::uint64_t> slot;

    bool isDisk() const noexcept { return type == disk || type == zonedDisk; }
};

struct LiveExpander {
    std::string path;
    std::string vendor, model, revision;
    std::uint64_t sasAddress = 0;
    std::uint64_t level = 0;
    std::string hbaPort;
    std::uint32_t host = 0;
};

struct LiveEnclosure { // of the enclosure class
    std::string path;
    std::string device; // path of its SCSI device
    std::uint64_t id = 0;
    std::optional<std::uint64_t> components;
};

struct LiveHba {
    std::uint32_t host = 0;
    std::string path;       // directory of hostN
    std::string pciAddress; // "0000:03:00.0"; empty for a host that is no PCI function's
    std::string driver;
    std::string model, serial, firmware;
    std::uint64_t sasAddress = 0;
    std::optional<std::uint8_t> slot;
    std::string state;
};

struct MdMember {
    std::string device;                // path of the SCSI device below it; empty when it is none
    std::optional<std::uint64_t> slot; // position in the array
    std::string state;                 // "in_sync", "spare", "faulty", ...
};

struct MdArray {
    std::string name; // "md0"
    std::string level;
    std::string arrayState, syncAction;
    std::uint64_t sectors = 0;
    std::optional<std::uint64_t> disks, degraded;
    std::vector<MdMember> members;
};

struct LiveMachine {
    std::vector<LiveHba> hbas;       // by PCI address
    std::vector<ScsiDevice> devices; // behind these HBAs, by HBA and address
    std::vector<LiveExpander> expanders;
    std::vector<LiveEnclosure> enclosures;
    std::vector<MdArray> arrays;
};

} // namespace KDV
