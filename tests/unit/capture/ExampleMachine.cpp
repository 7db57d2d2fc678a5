#include "ExampleMachine.h"

#include "PageBytes.h"

#include <fstream>
#include <sstream>

namespace KdvSas {
namespace fs = std::filesystem;

using KDV::bytesOf;
using KDV::FakeDisk;
using KDV::FakeSysfs;
using KDV::number16;
using KDV::number64;
using KDV::padded;

namespace {

constexpr std::uint64_t adapter = 0x500062b2047b51c4;
constexpr std::uint64_t adapterAsBox = 0x500062b2047b51c0;
constexpr std::uint64_t expander = 0x500a09800000507f;
constexpr std::uint64_t enclosure = 0x500a098000005080;
constexpr std::uint64_t firstPort = 0x5000cca26128b1f5;
constexpr std::uint64_t secondPort = 0x5000cca26128b1f6;
constexpr std::uint64_t unitOfPorts = 0x5000cca26128b1f4;
constexpr std::uint64_t directDisk = 0x5000a72001240011;
constexpr std::uint64_t directUnit = 0x5000a72001240010;
constexpr std::uint64_t sataPort = 0x500a098000005043;
constexpr std::uint64_t sataUnit = 0x50014ee2b7a1c3d5;
constexpr std::uint64_t secondBoxDisk = 0x5000c5009e8f7a61;

std::string hex(std::uint64_t value)
{
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
    return text;
}

std::string descriptor(int codeSet, int kind, const std::string& name)
{
    return bytesOf({codeSet, kind, 0, static_cast<int>(name.size())}) + name;
}

std::string swapped(std::string text)
{
    for (std::size_t at = 0; at + 1 < text.size(); at += 2)
        std::swap(text[at], text[at + 1]);
    return text;
}

std::string ataPage()
{
    std::string identify(512, '\0');
    identify.replace(20, 20, swapped(padded("     WD-WCC4N7XYZ123", 20)));
    identify.replace(46, 8, swapped("82.00A82"));
    identify.replace(54, 40, swapped(padded("ACME SATA 4000", 40)));
    identify.replace(216, 8, swapped(number64(sataUnit)));
    identify.replace(434, 2, bytesOf({0x18, 0x15})); // 5400
    identify[510] = static_cast<char>(0xA5);
    unsigned sum = 0;
    for (const char each : identify)
        sum += static_cast<unsigned char>(each);
    identify[511] = static_cast<char>(0x100 - (sum & 0xFF));
    return KDV::vpdPage(0x89, std::string(56, '\0') + identify);
}

std::string inquiry(const std::string& serial)
{
    return bytesOf({0, 0, 6, 0x12, 91, 0, 0, 2}) + padded("ACME", 8) + padded("SPINDLE 600", 16) + "SP07" +
           padded(serial, 20) + std::string(40, '\0');
}

std::string namesPage(std::uint64_t unit, std::uint64_t port, const std::string& serial)
{
    return KDV::vpdPage(0x83, descriptor(2, 0x01, padded("ACME", 8) + padded("SPINDLE 600", 16) + serial) +
                                  descriptor(1, 0x03, number64(unit)) + descriptor(0x61, 0x93, number64(port)) +
                                  descriptor(0x63, 0xA8, "naa." + hex(unit) + std::string(4, '\0')));
}

std::string waysToDrive(const std::string& block)
{
    const std::string way = block == "sda" ? "0" : "1";
    return "devices/pci0000:00/0000:00:01.0/0000:01:00.0/host0/port-0:0/expander-0:0/port-0:0:" + way +
           "/end_device-0:0:" + way + "/target0:0:" + way + "/0:0:" + way + ":0/block/" + block;
}

void addDualPorted(FakeSysfs& sysfs, const std::string& host, const std::string& box)
{
    for (int way = 0; way < 2; ++way) {
        FakeDisk disk;
        disk.address = "0:0:" + std::to_string(way) + ":0";
        disk.block = way == 0 ? "sda" : "sdb";
        disk.generic = way == 0 ? "sg0" : "sg1";
        disk.serial = "K1GXYZ8D";
        disk.wwid = "naa." + hex(unitOfPorts);
        disk.parent = "port-0:0/expander-0:0/port-0:0:" + std::to_string(way);
        disk.endDevice = "end_device-0:0:" + std::to_string(way);
        disk.sasAddress = "0x" + hex(way == 0 ? firstPort : secondPort);
        disk.enclosureIdentifier = "0x" + hex(enclosure);
        disk.bay = "3";
        const std::string device = sysfs.addDisk(host, disk);
        sysfs.file(device + "/vpd_pg83", namesPage(unitOfPorts, way == 0 ? firstPort : secondPort, "K1GXYZ8D0000R712"));
        sysfs.file(device + "/inquiry", inquiry("K1GXYZ8D0000R712"));
        if (way == 0) {
            const std::string slot = "Drive Slot #24_5000CCA26128B1F5";
            sysfs.file(box + "/" + slot + "/slot", "24\n");
            sysfs.file(box + "/" + slot + "/status", "OK\n");
            sysfs.link(device + "/enclosure_device:" + slot, box + "/" + slot);
            sysfs.link(box + "/" + slot + "/device", device);
        }
        sysfs.page(disk.address, "ready", "ready\n");
        sysfs.page(disk.address, "log_00", KDV::logPage(0x00, bytesOf({0x00, 0x15, 0x2F})));
        sysfs.page(disk.address, "log_15", KDV::logPage(0x15, KDV::logParameter(0, bytesOf({0, 0, 1, 0, 0, 0, 0, 0}))));
        sysfs.page(disk.address, "log_2f", KDV::logPage(0x2F, KDV::logParameter(0, bytesOf({0x5D, 0x10, 30}))));
    }
}

void addSata(FakeSysfs& sysfs, const std::string& host)
{
    FakeDisk disk;
    disk.address = "0:0:2:0";
    disk.block = "sdc";
    disk.generic = "sg2";
    disk.vendor = "ATA";
    disk.model = "ACME SATA 4000";
    disk.revision = "0A82";
    disk.serial = "";
    disk.wwid = "t10.ATA     ACME SATA 4000                          WD-WCC4N7XYZ123";
    disk.rotation = 0;
    disk.parent = "port-0:0/expander-0:0/port-0:0:2";
    disk.endDevice = "end_device-0:0:2";
    disk.sasAddress = "0x" + hex(sataPort);
    disk.protocols = "sata";
    disk.enclosureIdentifier = "0x" + hex(enclosure);
    disk.bay = "4";
    const std::string device = sysfs.addDisk(host, disk);
    sysfs.file(device + "/vpd_pg89", ataPage());
    sysfs.page(disk.address, "ready", "ready\nfailure predicted\n");
    sysfs.page(disk.address, "smartctl.json",
               R"({"smartctl": {"version": [7, 3], "argv": ["smartctl", "/dev/sg2"], "exit_status": 0},
 "model_name": "ACME SATA 4000", "serial_number": "WD-WCC4N7XYZ123",
 "wwn": {"naa": 5, "oui": 5358, "id": 11670766549},
 "smart_status": {"passed": true}, "power_on_time": {"hours": 4711}, "rotation_rate": 5400})");
}

void addDirect(FakeSysfs& sysfs, const std::string& host)
{
    FakeDisk disk;
    disk.address = "0:0:3:0";
    disk.block = "sdd";
    disk.generic = "sg3";
    disk.serial = "SP0001";
    disk.wwid = "naa." + hex(directUnit);
    disk.rotation = 1;
    disk.parent = "port-0:1";
    disk.endDevice = "end_device-0:1";
    disk.sasAddress = "0x" + hex(directDisk);
    disk.enclosureIdentifier = "0x" + hex(adapterAsBox);
    disk.bay = "7";
    sysfs.addPort(host, "port-0:1", {5});
    const std::string device = sysfs.addDisk(host, disk);
    sysfs.page(disk.address, "ready", "ready\n");
    sysfs.page(disk.address, "log_00", KDV::logPage(0x00, bytesOf({0x00, 0x11})));
    sysfs.page(disk.address, "log_11", KDV::logPage(0x11, KDV::logParameter(1, bytesOf({0, 0, 0, 12}))));
    const std::string md = sysfs.addMd("md0", "raid1", 2);
    sysfs.file(md + "/uuid", "3b1e77a0:51c4d2f9:8e0a6b7c:99d1f204\n");
    sysfs.addMdMember(md, device, "sdd", "0", "in_sync");
    const std::string mapped = "devices/virtual/block/dm-0"; // the drive with two ports, by both
    for (const char* way : {"sda", "sdb"})
        sysfs.link(mapped + "/slaves/" + way, waysToDrive(way));
    sysfs.file(mapped + "/dm/uuid", "mpath-35000cca26128b1f4\n");
    sysfs.file(md + "/dev-dm-0/slot", "1\n");
    sysfs.file(md + "/dev-dm-0/state", "in_sync\n");
    sysfs.link(md + "/dev-dm-0/block", mapped);
}

std::string addBox(FakeSysfs& sysfs, const std::string& host)
{
    const std::string port = sysfs.addPort(host, "port-0:0", {0, 1, 2, 3});
    sysfs.addExpander(port, "expander-0:0", "0x" + hex(expander));
    FakeDisk processor;
    processor.address = "0:0:8:0";
    processor.block = "";
    processor.generic = "sg8";
    processor.type = "13";
    processor.vendor = "GLOBEX";
    processor.model = "SHELF 24";
    processor.serial = "ENC000123X";
    processor.wwid = "naa." + hex(enclosure);
    processor.rotation = 0;
    processor.parent = "port-0:0/expander-0:0/port-0:0:8";
    processor.endDevice = "end_device-0:0:8";
    processor.sasAddress = "0x" + hex(enclosure - 3);
    const std::string device = sysfs.addDisk(host, processor);
    const auto text = [](const std::string& name) { return bytesOf({0, 0}) + number16(name.size()) + name; };
    sysfs.page(processor.address, "ready", "ready\n");
    sysfs.page(processor.address, "ses_01", KDV::sesConfiguration({{0x17, 2}, {0x03, 1}}, enclosure));
    sysfs.page(processor.address, "ses_02",
               KDV::sesStatus(0x02, {{KDV::sesElement(1), KDV::sesElement(1)}, {KDV::sesElement(2)}}));
    sysfs.page(processor.address, "ses_07",
               KDV::sesPage(0x07, 0,
                            text("") + text("Drive Slot #24_5000CCA26128B1F5") + text("Drive Slot #25") + text("") +
                                text("Fan PFC77120984")));
    sysfs.page(processor.address, "ses_0a",
               KDV::sesPage(0x0A, 0, KDV::sesSlotDescriptor(0, 3, firstPort) + KDV::sesSlotDescriptor(1, 4, sataPort)));
    return sysfs.addEnclosure(device, "0x" + hex(enclosure), 1);
}

void addSecondAdapter(FakeSysfs& sysfs)
{
    KDV::FakeHba hba;
    hba.host = 4;
    hba.pci = "pci0000:40/0000:40:02.0/0000:41:00.0";
    hba.driver = "smartpqi";
    hba.transport = false;
    hba.attributes = {{"model", "LINKLINE 416"}, {"serial_number", "5402839071"}, {"firmware_version", "1.34"}};
    const std::string host = sysfs.addHba(hba);
    FakeDisk disk;
    disk.address = "4:0:0:0";
    disk.block = "sdh";
    disk.generic = "sg9";
    disk.serial = "ZC1A2B3C0000W123QRST";
    disk.wwid = "naa." + hex(secondBoxDisk - 1);
    const std::string device = sysfs.addDisk(host, disk);
    sysfs.file(device + "/path_info", "[4:0:0:0]    Direct-Access     PORT: 1I BOX: 1 BAY: 9 Active\n");
    sysfs.file(device + "/sas_address", "0x" + hex(secondBoxDisk) + "\n");
    sysfs.file(device + "/unique_id", "5000C5009E8F7A600000000000000000\n");
    sysfs.file(device + "/inquiry", inquiry("ZC1A2B3C"));
    FakeDisk volume;
    volume.address = "4:1:0:0";
    volume.block = "sdi";
    volume.generic = "sg10";
    volume.serial = "";
    volume.wwid = "naa.600508b1001c5e0d77aa3f0912b4c6d8";
    volume.rotation = 0;
    const std::string made = sysfs.addDisk(host, volume);
    sysfs.file(made + "/raid_devices/4:1:0:0/level", "raid5\n");
    sysfs.file(made + "/raid_devices/4:1:0:0/state", "degraded\n");
}

template <class Record>
void add(const std::vector<const Record*>& records, std::vector<std::string>& lines)
{
    for (const Record* record : records) {
        std::istringstream text(KDV::fieldsOf(*record));
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
    }
}

} // namespace

void buildExampleMachine(FakeSysfs& sysfs)
{
    KDV::FakeHba hba;
    hba.attributes = {{"board_name", "LINKLINE 9300-8e"},
                      {"board_tracer", "SP91542353"},
                      {"host_sas_address", "0x" + hex(adapter)},
                      {"version_fw", "16.00.12.00"},
                      {"unique_id", "0"}};
    const std::string host = sysfs.addHba(hba);
    sysfs.addSlot("3", "0000:01:00");
    const std::string box = addBox(sysfs, host);
    addDualPorted(sysfs, host, box);
    addSata(sysfs, host);
    addDirect(sysfs, host);
    addSecondAdapter(sysfs);
    sysfs.file("module/mpt3sas/version", "43.100.00.00\n");
    sysfs.file("devices/virtual/dmi/id/product_name", "Rackline 200\n");
    sysfs.file("devices/virtual/dmi/id/product_serial", "CZJ7340K1P\n");
    KDV::FakeHba other;
    other.host = 7;
    other.pci = "pci0000:00/0000:00:17.0/ata1";
    other.driver = "ahci";
    other.transport = false;
    const std::string ports = sysfs.addHba(other);
    FakeDisk boot;
    boot.address = "7:0:0:0";
    boot.block = "sdz";
    boot.serial = "BOOTDISK42";
    sysfs.addDisk(ports, boot);
}

const std::vector<std::string>& exampleSerials()
{
    static const std::vector<std::string> texts{"K1GXYZ8D",
                                                "K1GXYZ8D0000R712",
                                                "WD-WCC4N7XYZ123",
                                                "SP0001",
                                                "ENC000123X",
                                                "PFC77120984",
                                                "SP91542353",
                                                "5402839071",
                                                "ZC1A2B3C",
                                                "ZC1A2B3C0000W123QRST",
                                                "BOOTDISK42",
                                                "3b1e77a0:51c4d2f9:8e0a6b7c:99d1f204",
                                                "600508b1001c5e0d77aa3f0912b4c6d8"};
    return texts;
}

const std::vector<std::uint64_t>& exampleAddresses()
{
    static const std::vector<std::uint64_t> addresses{
        adapter,    adapterAsBox, expander, enclosure, firstPort,     secondPort,        unitOfPorts,
        directDisk, directUnit,   sataPort, sataUnit,  secondBoxDisk, secondBoxDisk - 1, enclosure - 3};
    return addresses;
}

MachineCapture captureOf(const FakeSysfs& sysfs)
{
    CaptureSettings settings;
    settings.root = sysfs.root();
    settings.opener = KDV::makeCaptureOpener(sysfs.root());
    settings.asking.deadline = settings.patience = std::chrono::seconds(60); // under load; nothing waits that long
    return captureMachine(settings);
}

void unpack(const std::vector<CapturedEntry>& entries, const FakeSysfs& to)
{
    const fs::path folder = to.path("").parent_path().parent_path();
    for (const CapturedEntry& entry : entries) {
        const fs::path path = folder / entry.path;
        fs::create_directories(entry.kind == CapturedEntry::Kind::Folder ? path : path.parent_path());
        if (entry.kind == CapturedEntry::Kind::Link) fs::create_symlink(entry.content, path);
        if (entry.kind == CapturedEntry::Kind::File) std::ofstream(path, std::ios::binary) << entry.content;
    }
}

std::vector<std::string> recordLines(const KDV::LiveRecords& records)
{
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < records.hbas().size(); ++i) {
        add<KDV::SasHbaRecord>({&records.hba(i)}, lines);
        add(records.boxes(i), lines);
        add(records.drives(i), lines);
        add(records.volumes(i), lines);
    }
    return lines;
}

} // namespace KdvSas
