#include "FakeSysfs.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace KDV {
namespace fs = std::filesystem;

namespace {

std::string last(const std::string& path) { return path.substr(path.rfind('/') + 1); }

} // namespace

std::string vpdPage(unsigned char code, std::string_view body)
{
    std::string page{'\0', static_cast<char>(code), static_cast<char>(body.size() >> 8),
                     static_cast<char>(body.size())};
    return page.append(body);
}

FakeSysfs::FakeSysfs()
{
    const bool inMemory = access("/dev/shm", W_OK) == 0; // thousands of small files
    std::string pattern = ((inMemory ? fs::path("/dev/shm") : fs::temp_directory_path()) / "kdv-sysfs-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no folder for a tree");
    _folder = pattern;
    fs::create_directories(_folder / "sys" / "class");
}

FakeSysfs::~FakeSysfs()
{
    std::error_code ignored;
    fs::remove_all(_folder, ignored);
}

void FakeSysfs::file(const std::string& inTree, std::string_view content) const
{
    fs::create_directories(path(inTree).parent_path());
    std::ofstream(path(inTree), std::ios::binary) << content;
}

void FakeSysfs::page(const std::string& device, const std::string& name, std::string_view content) const
{
    fs::create_directories(pages(device));
    std::ofstream(pages(device) / name, std::ios::binary) << content;
}

void FakeSysfs::link(const std::string& inTree, const std::string& targetInTree) const
{
    fs::create_directories(path(inTree).parent_path());
    fs::create_symlink(fs::path("/" + targetInTree).lexically_relative(fs::path("/" + inTree).parent_path()),
                       path(inTree));
}

void FakeSysfs::folder(const std::string& inTree) const { fs::create_directories(path(inTree)); }

void FakeSysfs::remove(const std::string& inTree) const { fs::remove_all(path(inTree)); }

std::string FakeSysfs::addHba(const FakeHba& hba)
{
    const std::string name = "host" + std::to_string(hba.host);
    const std::string host = "devices/" + hba.pci + "/" + name;
    const std::string attributes = host + "/scsi_host/" + name + "/";
    file(attributes + "proc_name", hba.driver + "\n");
    file(attributes + "state", hba.state + "\n");
    for (const auto& [attribute, value] : hba.attributes)
        file(attributes + attribute, value + "\n");
    link("class/scsi_host/" + name, host + "/scsi_host/" + name);
    if (hba.transport) {
        folder(host + "/sas_host/" + name);
        link("class/sas_host/" + name, host + "/sas_host/" + name);
    }
    return host;
}

std::string FakeSysfs::addPort(const std::string& hostPath, const std::string& port, const std::vector<unsigned>& phys)
{
    const std::string host = last(hostPath).substr(4);
    for (const unsigned phy : phys) {
        const std::string name = "phy-" + host + ":" + std::to_string(phy);
        folder(hostPath + "/" + name);
        link(hostPath + "/" + port + "/" + name, hostPath + "/" + name);
    }
    return hostPath + "/" + port;
}

std::string FakeSysfs::addExpander(const std::string& portPath, const std::string& name, const std::string& sasAddress,
                                   const std::string& level)
{
    const std::string expander = portPath + "/" + name;
    file(expander + "/sas_expander/" + name + "/vendor_id", "GLOBEX  \n");
    file(expander + "/sas_expander/" + name + "/product_id", "SHELF EXP       \n");
    file(expander + "/sas_expander/" + name + "/product_rev", "0212\n");
    file(expander + "/sas_expander/" + name + "/level", level + "\n");
    file(expander + "/sas_device/" + name + "/sas_address", sasAddress + "\n");
    link("class/sas_expander/" + name, expander + "/sas_expander/" + name);
    return expander;
}

std::string FakeSysfs::addDisk(const std::string& hostPath, const FakeDisk& disk)
{
    std::string device = hostPath;
    if (!disk.endDevice.empty()) {
        device += "/" + disk.parent + "/" + disk.endDevice;
        const std::string sas = device + "/sas_device/" + disk.endDevice + "/";
        file(sas + "sas_address", disk.sasAddress + "\n");
        file(sas + "target_port_protocols", disk.protocols + "\n");
        file(sas + "phy_identifier", disk.phy + "\n");
        if (!disk.bay.empty()) file(sas + "bay_identifier", disk.bay + "\n");
        if (!disk.enclosureIdentifier.empty()) file(sas + "enclosure_identifier", disk.enclosureIdentifier + "\n");
    }
    device += "/target" + disk.address.substr(0, disk.address.rfind(':')) + "/" + disk.address;
    const std::string at = device + "/";
    file(at + "type", disk.type + "\n");
    file(at + "vendor", disk.vendor + "    \n");
    file(at + "model", disk.model + "        \n");
    file(at + "rev", disk.revision + "\n");
    file(at + "state", disk.state + "\n");
    if (!disk.wwid.empty()) file(at + "wwid", disk.wwid + "\n");
    if (!disk.serial.empty()) file(at + "vpd_pg80", vpdPage(0x80, disk.serial + "  "));
    if (disk.rotation != 0)
        file(at + "vpd_pgb1", vpdPage(0xB1, std::string{static_cast<char>(disk.rotation >> 8),
                                                        static_cast<char>(disk.rotation), '\0', '\3'}));
    if (!disk.generic.empty()) folder(at + "scsi_generic/" + disk.generic);
    if (!disk.block.empty()) {
        const std::string block = at + "block/" + disk.block;
        file(block + "/size", std::to_string(disk.sectors) + "\n");
        file(block + "/queue/logical_block_size", std::to_string(disk.logicalBlock) + "\n");
        file(block + "/queue/physical_block_size", std::to_string(disk.physicalBlock) + "\n");
        file(block + "/queue/rotational", "1\n");
        link("block/" + disk.block, block);
    }
    folder(at + "scsi_device/" + disk.address);
    link("class/scsi_device/" + disk.address, at + "scsi_device/" + disk.address);
    return device;
}

std::string FakeSysfs::addEnclosure(const std::string& devicePath, const std::string& id, unsigned slots)
{
    const std::string name = last(devicePath);
    const std::string enclosure = devicePath + "/enclosure/" + name;
    file(enclosure + "/id", id + "\n");
    file(enclosure + "/components", std::to_string(slots) + "\n");
    for (unsigned slot = 0; slot < slots; ++slot) {
        const std::string at = enclosure + "/Slot #" + std::to_string(slot) + ", x/";
        file(at + "slot", std::to_string(slot) + "\n");
        file(at + "status", "not installed\n");
        file(at + "fault", "0\n");
    }
    link("class/enclosure/" + name, enclosure);
    return enclosure;
}

void FakeSysfs::putInSlot(const std::string& devicePath, const std::string& enclosurePath, const std::string& slot)
{
    const std::string directory = enclosurePath + "/Slot #" + slot + ", x";
    file(directory + "/status", "OK\n");
    link(devicePath + "/enclosure_device:Slot #" + slot + ", x", directory);
}

std::string FakeSysfs::addMd(const std::string& name, const std::string& level, unsigned disks,
                             unsigned long long sectors)
{
    const std::string block = "devices/virtual/block/" + name;
    file(block + "/size", std::to_string(sectors) + "\n");
    file(block + "/md/level", level + "\n");
    file(block + "/md/raid_disks", std::to_string(disks) + "\n");
    file(block + "/md/array_state", "clean\n");
    file(block + "/md/degraded", "0\n");
    file(block + "/md/sync_action", "idle\n");
    link("block/" + name, block);
    return block + "/md";
}

void FakeSysfs::addMdMember(const std::string& mdPath, const std::string& devicePath, const std::string& block,
                            const std::string& slot, const std::string& state)
{
    const std::string entry = mdPath + "/dev-" + block;
    file(entry + "/slot", slot + "\n");
    file(entry + "/state", state + "\n");
    link(entry + "/block", devicePath + "/block/" + block);
}

void FakeSysfs::addSlot(const std::string& name, const std::string& address) const
{
    file("bus/pci/slots/" + name + "/address", address + "\n");
}

void FakeSysfs::removeDisk(const std::string& devicePath) const
{
    const std::string name = last(devicePath);
    remove("class/scsi_device/" + name);
    for (const auto& block : fs::directory_iterator(path(devicePath + "/block")))
        remove("block/" + block.path().filename().string());
    remove(devicePath);
}

} // namespace KDV
