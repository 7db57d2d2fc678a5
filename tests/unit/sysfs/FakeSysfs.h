// Builds a sysfs tree in a folder of its own: the directories, attributes and links of adapters, disks, enclosures and
// arrays as the kernel lays them out. A test takes what it needs and adds or damages the rest by hand. The folder goes
// with the object.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace KDV {

struct FakeHba {
    unsigned host = 0;
    std::string pci = "pci0000:00/0000:00:01.0/0000:01:00.0";
    std::string driver = "mpt3sas";
    std::string state = "running";
    bool transport = true;
    std::vector<std::pair<std::string, std::string>> attributes; // of scsi_host
};

struct FakeDisk {
    std::string address = "0:0:0:0"; // host:channel:target:lun
    std::string block = "sda";
    std::string generic = "sg0";
    std::string vendor = "ACME", model = "SPINDLE 600", revision = "SP07", serial = "SP0001";
    std::string wwid = "naa.5000a72001240000";
    std::string state = "running";
    unsigned long long sectors = 1172123568;
    unsigned logicalBlock = 512, physicalBlock = 512;
    unsigned rotation = 10000; // 0: no such page
    std::string type = "0";
    // SAS transport; an empty end device means that there is none.
    std::string parent;    // below hostN: "port-0:1" or "port-0:0/expander-0:0/port-0:0:1"
    std::string endDevice; // "end_device-0:1"
    std::string sasAddress = "0x5000a72001240001";
    std::string bay, enclosureIdentifier, phy = "0", protocols = "ssp"; // empty: no such attribute
};

class FakeSysfs {
public:
    FakeSysfs();
    ~FakeSysfs();
    FakeSysfs(const FakeSysfs&) = delete;
    FakeSysfs& operator=(const FakeSysfs&) = delete;

    std::string root() const { return (_folder / "sys").string(); }
    std::filesystem::path path(const std::string& inTree) const { return _folder / "sys" / inTree; }
    std::filesystem::path pages(const std::string& device) const { return _folder / "pages" / device; }

    void file(const std::string& inTree, std::string_view content) const;
    void page(const std::string& device, const std::string& name, std::string_view content) const;
    void link(const std::string& inTree, const std::string& targetInTree) const; // relative, as the kernel's are
    void folder(const std::string& inTree) const;
    void remove(const std::string& inTree) const;

    // Each returns the directory in the tree.
    std::string addHba(const FakeHba& hba);
    std::string addPort(const std::string& hostPath, const std::string& port, const std::vector<unsigned>& phys);
    std::string addExpander(const std::string& portPath, const std::string& name, const std::string& sasAddress,
                            const std::string& level = "1");
    std::string addDisk(const std::string& hostPath, const FakeDisk& disk);
    std::string addEnclosure(const std::string& devicePath, const std::string& id, unsigned slots);
    void putInSlot(const std::string& devicePath, const std::string& enclosurePath, const std::string& slot);
    std::string addMd(const std::string& name, const std::string& level, unsigned disks,
                      unsigned long long sectors = 2097152);
    void addMdMember(const std::string& mdPath, const std::string& devicePath, const std::string& block,
                     const std::string& slot, const std::string& state);
    void addSlot(const std::string& name, const std::string& address) const;
    void removeDisk(const std::string& devicePath) const;

private:
    std::filesystem::path _folder;
};

// A VPD page with its header.
std::string vpdPage(unsigned char code, std::string_view body);

} // namespace KDV
