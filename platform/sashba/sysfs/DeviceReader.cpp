#include "sashba/sysfs/DeviceReader.h"

#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/ScsiPages.h"

#include <algorithm>

namespace KDV {
namespace {

constexpr char slotLink[] = "enclosure_device:";

std::string page(const SysfsTree& tree, const std::string& path) { return tree.bytes(path).value_or(std::string()); }

void readIdentity(const SysfsTree& own, ScsiDevice& device)
{
    device.vendor = own.text("vendor");
    device.model = own.text("model");
    device.revision = own.text("rev");
    device.serial = parseUnitSerialNumber(ByteView(page(own, "vpd_pg80")));
    device.wwid = own.text("wwid");
    if (device.wwid.empty()) {
        if (const auto naa = parseNaaName(ByteView(page(own, "vpd_pg83")))) device.wwid = "naa." + hex16(*naa);
    }
    if (device.wwid.find_first_not_of("naeui.t10 ") == std::string::npos) // "naa.0000000000000000" names no disk
        device.wwid.clear();
    device.rotation = parseRotationRate(ByteView(page(own, "vpd_pgb1")));
}

// The ATA page knows the whole firmware name, where INQUIRY has room for four letters of it.
void readAtaIdentity(const SysfsTree& own, ScsiDevice& device)
{
    const std::string bytes = page(own, "vpd_pg89");
    if (bytes.empty()) return;
    device.transport = Transport::Sata;
    if (const auto ata = parseAtaInformation(ByteView(bytes))) {
        if (!ata->firmware.empty()) device.revision = ata->firmware;
        if (device.serial.empty()) device.serial = ata->serial;
        if (!device.rotation) device.rotation = ata->rotation;
    }
}

void readBlock(const SysfsTree& own, ScsiDevice& device)
{
    const std::vector<std::string> blocks = own.names("block");
    if (!blocks.empty()) {
        device.blockName = blocks.front();
        const std::string block = "block/" + device.blockName;
        device.sectors = own.number(block + "/size").value_or(0);
        device.logicalBlock = own.number(block + "/queue/logical_block_size").value_or(0);
        device.physicalBlock = own.number(block + "/queue/physical_block_size").value_or(0);
        if (!device.rotation && own.number(block + "/queue/rotational") == 0U)
            device.rotation = std::uint16_t{1}; // 0 there is said of solid-state disks only
    }
    const std::vector<std::string> generics = own.names("scsi_generic");
    if (!generics.empty()) device.genericName = generics.front();
}

void readTransport(const SysfsTree& tree, const SysfsTree& own, const DevicePath& split, ScsiDevice& device)
{
    device.hbaPort = split.hbaPort;
    device.expander = split.expander;
    if (!split.endDevice.empty()) {
        const SysfsTree sas(tree, split.endDevice + "/sas_device/" + lastOf(split.endDevice));
        device.sasAddress = sas.number("sas_address").value_or(0);
        device.enclosureIdentifier = sas.number("enclosure_identifier").value_or(0);
        device.bay = sas.number("bay_identifier");
        device.phy = sas.number("phy_identifier");
        const std::string protocols = sas.text("target_port_protocols");
        if (protocols.find("ssp") != std::string::npos)
            device.transport = Transport::Sas;
        else if (protocols.find("sata") != std::string::npos || protocols.find("stp") != std::string::npos)
            device.transport = Transport::Sata; // some drivers name the tunnel instead of what is in it
    }
    if (device.sasAddress == 0)
        device.sasAddress = own.number("sas_address").value_or(0); // smartpqi: on the disk itself
    if (device.transport == Transport::Unknown && device.vendor == "ATA") device.transport = Transport::Sata;
}

void readPlace(const SysfsTree& tree, const SysfsTree& own, ScsiDevice& device)
{
    device.pathInfo = parsePathInfo(page(own, "path_info"));
    device.raidLevel = own.text("raid_level");
    std::vector<std::string> slots;
    for (TreeEntry& entry : own.entries("")) {
        if (entry.name == "raid_devices") device.raidClass = true;
        if (entry.name.compare(0, sizeof slotLink - 1, slotLink) == 0) slots.push_back(std::move(entry.name));
    }
    std::sort(slots.begin(), slots.end(), naturalLess);
    for (const std::string& name : slots) {
        if (!device.slotDirectory.empty()) break;
        device.slotDirectory = tree.target(device.path + "/" + name);
        if (!device.slotDirectory.empty()) device.slot = tree.number(device.slotDirectory + "/slot");
    }
}

} // namespace

std::optional<ScsiDevice> readScsiDevice(const SysfsTree& tree, const std::string& path)
{
    const DevicePath split = splitDevicePath(path);
    const std::optional<ScsiAddress> address = parseScsiAddress(lastOf(path));
    const SysfsTree own(tree, path);
    const std::uint64_t identity = own.identity("");
    if (!address || identity == 0 || split.device != path) return std::nullopt;
    ScsiDevice device;
    device.path = path;
    device.identity = identity;
    device.address = *address;
    device.type = own.number("type").value_or(0x1F);
    device.state = own.text("state");
    readIdentity(own, device);
    readTransport(tree, own, split, device);
    readAtaIdentity(own, device);
    readBlock(own, device);
    readPlace(tree, own, device);
    return device;
}

std::uint64_t naaOf(const std::string& wwid)
{
    if (wwid.size() != 20 || wwid.compare(0, 4, "naa.") != 0) return 0;
    return wholeNumber("0x" + wwid.substr(4)).value_or(0);
}

std::string diskIdentity(const ScsiDevice& device)
{
    if (!device.wwid.empty()) return device.wwid;
    if (!device.serial.empty()) return "serial " + device.vendor + " " + device.model + " " + device.serial;
    if (device.sasAddress != 0) return "sas " + hex16(device.sasAddress);
    return {};
}

} // namespace KDV
