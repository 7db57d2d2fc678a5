// One machine a driver: what each kernel driver offers becomes records, every field held against its text. A field that
// a text does not name is zero or empty.
#include "LiveRecords.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

using testing::Test;

TEST(LiveAdapters, Mpt3sasWithAnExpanderAndABox)
{
    FakeSysfs sysfs;
    const std::string host = sysfs.addHba({0,
                                           "pci0000:00/0000:00:01.0/0000:01:00.0",
                                           "mpt3sas",
                                           "running",
                                           true,
                                           {{"board_name", "ZX9300-8e"},
                                            {"board_tracer", "SP91542000"},
                                            {"version_fw", "16.00.12.00"},
                                            {"host_sas_address", "0x500605b000998800"},
                                            {"unique_id", "4"}}});
    sysfs.addSlot("3", "0000:01:00");
    const std::string port = sysfs.addPort(host, "port-0:2", {4, 5, 6, 7});
    sysfs.addExpander(port, "expander-0:0", "0x500a098000005000");
    FakeDisk disk;
    disk.parent = "port-0:2/expander-0:0/port-0:0:5";
    disk.endDevice = "end_device-0:0:5";
    disk.bay = "23";
    disk.enclosureIdentifier = "0x500a098000005080";
    disk.phy = "9";
    const std::string device = sysfs.addDisk(host, disk);
    FakeDisk ses;
    ses.type = "13";
    ses.address = "0:0:1:0";
    ses.block = "";
    ses.generic = "sg1";
    ses.vendor = "GLOBEX";
    ses.model = "SHELF 24";
    ses.revision = "0307";
    ses.serial = "GS24-0042";
    ses.rotation = 0;
    ses.wwid = "naa.500a098000005081";
    ses.parent = "port-0:2/expander-0:0/port-0:0:6";
    ses.endDevice = "end_device-0:0:6";
    const std::string enclosure = sysfs.addEnclosure(sysfs.addDisk(host, ses), "0x500a098000005080", 25);
    sysfs.putInSlot(device, enclosure, "24");

    LiveRecords records(sysfs);
    ASSERT_EQ(records.hbas().size(), 1U);
    EXPECT_EQ(fieldsOf(records.hba()), "logicalLocation = Slot 3\nslotNumber = 3\nmodelCode = 2\n"
                                       "arraySystemStatus = 2\ncontrollerStatus = 2\nfirmwareVersion = 16.00.12.00\n"
                                       "name = ZX9300-8e SP91542000\n");
    ASSERT_EQ(records.drives().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.drives()[0]),
              "driveNumber = 1024\nsize = 572325\nusage = 4\nrotationalSpeed = 3\nhotPlug = 2\ninterface = 2\n"
              "hotPlugLocation = Port 4 Box 1 Bay 24\nlocation = Port 4 Box 1 Bay 24\ninquiry = ACME    SPINDLE 600\n"
              "firmwareRevision = SP07\nserialNumber = SP0001\nosName = /dev/sda\nname = 5000A72001240000\n"
              "blockSize = 512\nblockCount = 1172123568\ncarrierAuthStatus = 2\nboxIdentifier = 268435457\n");
    ASSERT_EQ(records.boxes().size(), 1U) << "the expander of the enclosure is no box of its own";
    EXPECT_EQ(fieldsOf(*records.boxes()[0]), "boxNumber = 1\nmodel = SHELF 24\nfirmwareVersion = 0307\n"
                                             "manufacturer = GLOBEX\ndriveBays = 25\nserialNumber = GS24-0042\n"
                                             "name = Port 4 Box 1\n");
    EXPECT_TRUE(records.volumes().empty());
}

TEST(LiveAdapters, MptsasWhosePhysShowTheDisksAddressAndWhoseBaysAreAllZero)
{
    FakeSysfs sysfs;
    const std::string host = sysfs.addHba({2,
                                           "pci0000:00/0000:00:05.0",
                                           "mptsas",
                                           "running",
                                           true,
                                           {{"board_name", "ZX1068"}, {"version_fw", "01.50.146.00"}}});
    for (unsigned i = 0; i < 2; ++i) {
        const std::string n = std::to_string(i);
        sysfs.addPort(host, "port-2:" + n, {i + 2});
        sysfs.file(host + "/phy-2:" + std::to_string(i + 2) + "/sas_phy/phy-2:" + std::to_string(i + 2) +
                       "/sas_address",
                   "0x5000a7200124000" + n + "\n");
        FakeDisk disk;
        disk.address = "2:0:" + n + ":0";
        disk.block = i ? "sdb" : "sda";
        disk.serial = "SP000" + n;
        disk.wwid = "naa.5000a7200124000" + n;
        disk.sasAddress = "0x5000a7200124000" + n;
        disk.parent = "port-2:" + n;
        disk.endDevice = "end_device-2:" + n;
        disk.bay = "0";
        sysfs.addDisk(host, disk);
    }
    LiveRecords records(sysfs);
    EXPECT_EQ(fieldsOf(records.hba()), "hbaNumber = 2\nlogicalLocation = PCI 0000:00:05.0\nslotNumber = 255\n"
                                       "modelCode = 2\narraySystemStatus = 2\ncontrollerStatus = 2\n"
                                       "firmwareVersion = 01.50.146.00\nname = ZX1068 0000:00:05.0\n")
        << "an address of a disk does not name the adapter";
    EXPECT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{2, 3})) << "by port: a bay of no enclosure is none";
    EXPECT_EQ(textOf(records.drives()[1]->location), "Port 3 Device 3");
    EXPECT_EQ(+records.drives()[1]->hbaNumber, 2U);
    EXPECT_EQ(+records.drives()[1]->boxIdentifier, 0U);
    EXPECT_EQ(records.drives()[1]->hotPlug, 0);
    EXPECT_TRUE(records.boxes().empty());
}

TEST(LiveAdapters, SmartpqiSaysPortBoxAndBayItself)
{
    FakeSysfs sysfs;
    const std::string host = sysfs.addHba(
        {1,
         "pci0000:00/0000:5c:00.0",
         "smartpqi",
         "running",
         true,
         {{"model", "ZX 2100"}, {"vendor", "ACME"}, {"serial_number", "7C0001"}, {"firmware_version", "4.11"}}});
    FakeDisk disk;
    disk.address = "1:0:4:0";
    disk.vendor = "ATA";
    disk.model = "FLASH 480";
    disk.rotation = 1;
    disk.sectors = 937703088;
    disk.parent = "port-1:0";
    disk.endDevice = "end_device-1:0";
    disk.protocols = "sata";
    const std::string device = sysfs.addDisk(host, disk);
    sysfs.file(device + "/path_info", "[1:1:4:0]    Direct-Access     PORT: 2I BOX: 3 BAY: 7 Inactive\n"
                                      "[1:0:4:0]    Direct-Access     PORT: 1I BOX: 3 BAY: 7 Active\n");
    sysfs.file(device + "/raid_level", "N/A\n");
    FakeDisk volume;
    volume.address = "1:1:0:2";
    volume.block = "sdb";
    volume.vendor = "ACME";
    volume.model = "LOGICAL VOLUME";
    volume.wwid = "naa.600508b1001c0000000000000000abcd";
    const std::string logical = sysfs.addDisk(host, volume);
    sysfs.file(logical + "/raid_level", "RAID-5\n");

    LiveRecords records(sysfs);
    EXPECT_EQ(fieldsOf(records.hba()), "hbaNumber = 1\nlogicalLocation = PCI 0000:5c:00.0\nslotNumber = 255\n"
                                       "modelCode = 2\narraySystemStatus = 2\ncontrollerStatus = 2\n"
                                       "firmwareVersion = 4.11\nname = ZX 2100 7C0001\n");
    ASSERT_EQ(records.drives().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.drives()[0]),
              "hbaNumber = 1\ndriveNumber = 3007\nsize = 457862\nusage = 4\nplacement = 2\nhotPlug = 2\ninterface = 1\n"
              "hotPlugLocation = Port 1I Box 3 Bay 7\nlocation = Port 1I Box 3 Bay 7\ninquiry = ATA     FLASH 480\n"
              "firmwareRevision = SP07\nserialNumber = SP0001\nosName = /dev/sda\nname = 5000A72001240000\n"
              "blockSize = 512\nblockCount = 937703088\nmediaType = 3\nssdWearStatus = 255\ncarrierAuthStatus = 2\n"
              "boxIdentifier = 268435459\n");
    ASSERT_EQ(records.boxes().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.boxes()[0]), "boxNumber = 3\nlocationCode = 2\nhbaNumber = 1\nname = Port 1I Box 3\n");
    ASSERT_EQ(records.volumes().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.volumes()[0]), "hbaNumber = 1\nlogicalDriveNumber = 2\nsize = 572325\n"
                                               "rebuildingDrive = 4294967295\nraidLevel = 5\nosName = /dev/sdb\n")
        << "its state and its members are told nowhere, so they stay unknown";
}

TEST(LiveAdapters, MegaraidWithoutTheTransport)
{
    FakeSysfs sysfs;
    const std::string host = sysfs.addHba({0, "pci0000:00/0000:02:00.0", "megaraid_sas", "running", false, {}});
    FakeDisk passed;
    passed.address = "0:0:12:0";
    passed.vendor = "ATA";
    sysfs.addDisk(host, passed);
    FakeDisk volume;
    volume.address = "0:3:4:0";
    volume.block = "sdb";
    volume.vendor = "ACME";
    volume.model = "ZX9361-8i";
    volume.serial = "";
    volume.rotation = 0;
    volume.wwid = "naa.600605b00000000000000000000001ff";
    sysfs.addDisk(host, volume);

    LiveRecords records(sysfs);
    EXPECT_EQ(fieldsOf(records.hba()), "logicalLocation = PCI 0000:02:00.0\nslotNumber = 255\nmodelCode = 2\n"
                                       "arraySystemStatus = 2\ncontrollerStatus = 2\n"
                                       "name = megaraid_sas 0000:02:00.0\n");
    ASSERT_EQ(records.drives().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.drives()[0]),
              "driveNumber = 12\nsize = 572325\nusage = 4\nrotationalSpeed = 3\ninterface = 1\n"
              "hotPlugLocation = Port 0 Device 12\nlocation = Port 0 Device 12\ninquiry = ATA     SPINDLE 600\n"
              "firmwareRevision = SP07\nserialNumber = SP0001\nosName = /dev/sda\nname = 5000A72001240000\n"
              "blockSize = 512\nblockCount = 1172123568\ncarrierAuthStatus = 2\n");
    ASSERT_EQ(records.volumes().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.volumes()[0]), "logicalDriveNumber = 132\nsize = 572325\nrebuildingDrive = 4294967295\n"
                                               "osName = /dev/sdb\n");
}

TEST(LiveAdapters, LibsasDriverWithBaysByWiringOnly)
{
    FakeSysfs sysfs;
    const std::string host = sysfs.addHba({5, "pci0000:80/0000:83:00.0", "isci", "running", true, {{"isci_id", "0"}}});
    sysfs.file(host + "/phy-5:1/sas_phy/phy-5:1/sas_address", "0x5fcfffff00000002\n");
    sysfs.file(host + "/phy-5:0/sas_phy/phy-5:0/sas_address", "0x5fcfffff00000001\n");
    const std::string port = sysfs.addPort(host, "port-5:0", {0, 1});
    sysfs.addExpander(port, "expander-5:0", "0x500a098000006000");
    FakeDisk disk;
    disk.address = "5:0:0:0";
    disk.parent = "port-5:0/expander-5:0/port-5:0:3";
    disk.endDevice = "end_device-5:0:3";
    disk.phy = "11";
    disk.wwid = "";
    sysfs.addDisk(host, disk);

    LiveRecords records(sysfs);
    EXPECT_EQ(textOf(records.hba().name), "isci 5FCFFFFF00000001") << "the lowest address of its phys";
    EXPECT_EQ(textOf(records.hba().firmwareVersion), "");
    ASSERT_EQ(records.boxes().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.boxes()[0]), "boxNumber = 1\nmodel = SHELF EXP\nfirmwareVersion = 0212\n"
                                             "manufacturer = GLOBEX\nhbaNumber = 5\nname = Port 0 Box 1\n");
    ASSERT_EQ(records.drives().size(), 1U);
    EXPECT_EQ(+records.drives()[0]->driveNumber, 1011U);
    EXPECT_EQ(textOf(records.drives()[0]->location), "Port 0 Box 1 Bay 11");
    EXPECT_EQ(textOf(records.drives()[0]->name), "5000A72001240001") << "its SAS address where it has no other name";
}

TEST(LiveAdapters, TellTheInterfaceOfADriveByItsProtocols)
{
    struct {
        const char *protocols, *vendor;
        int interface;
    } const cases[] = {{"ssp", "ACME", 2}, {"smp, ssp", "ACME", 2}, {"sata", "ATA", 1}, {"stp", "ACME", 1},
                       {"none", "ATA", 1}, {"none", "ACME", 0},     {"", "ACME", 0}};
    for (const auto& one : cases) {
        FakeSysfs sysfs;
        FakeDisk disk;
        disk.protocols = one.protocols;
        disk.vendor = one.vendor;
        disk.parent = "port-0:0";
        disk.endDevice = "end_device-0:0";
        sysfs.addDisk(sysfs.addHba({}), disk);
        EXPECT_EQ(LiveRecords(sysfs).drives().at(0)->interface, one.interface) << one.protocols << " " << one.vendor;
    }
}

TEST(LiveAdapters, HostStatesBecomeStatuses)
{
    struct {
        const char* state;
        int controller, arraySystem;
    } const cases[] = {{"running", 2, 2}, {"recovery", 0, 3},   {"del", 3, 4},
                       {"offline", 3, 4}, {"unheard of", 0, 0}, {"", 0, 0}};
    for (const auto& one : cases) {
        FakeSysfs sysfs;
        FakeHba hba;
        hba.state = one.state;
        sysfs.addHba(hba);
        LiveRecords records(sysfs);
        EXPECT_EQ(records.hba().controllerStatus, one.controller) << one.state;
        EXPECT_EQ(records.hba().arraySystemStatus, one.arraySystem) << one.state;
    }
}

TEST(LiveAdapters, TheSlotOfABridgeAboveIsTheSlotAndCountersAreNone)
{
    FakeSysfs sysfs;
    sysfs.addHba({});
    sysfs.addSlot("0", "0000:01:00");
    sysfs.addSlot("7", "0000:00:01");
    EXPECT_EQ(LiveRecords(sysfs).hba().slotNumber, 7);
    sysfs.remove("bus/pci/slots/7");
    EXPECT_EQ(LiveRecords(sysfs).hba().slotNumber, 255) << "a slot 0 is the firmware's counting";
}

TEST(LiveAdapters, StandInTheOrderOfTheirPciAddressesAndOthersAreLeftOut)
{
    FakeSysfs sysfs;
    sysfs.addHba({7, "pci0000:00/0000:03:00.0", "mpt3sas", "running", true, {}});
    sysfs.addHba({9, "pci0000:00/0000:02:00.0", "a driver of tomorrow", "running", true, {}});
    sysfs.addHba({1, "pci0000:00/0000:00:1f.2", "ahci", "running", false, {}});
    LiveRecords records(sysfs);
    ASSERT_EQ(records.hbas().size(), 2U);
    EXPECT_EQ(+records.hba(0).hbaNumber, 9U);
    EXPECT_EQ(+records.hba(1).hbaNumber, 7U);
}

TEST(LiveAdapters, AMachineWithoutOneIsNoErrorAndSaysWhatToTry)
{
    FakeSysfs sysfs;
    LiveRecords records(sysfs);
    records.refresh();
    EXPECT_TRUE(records.hbas().empty());
    EXPECT_TRUE(records.reports->errors.empty());
    ASSERT_EQ(records.reports->infos.size(), 1U) << "once, not at every refresh";
    EXPECT_NE(records.reports->infos[0].find("no SAS adapter"), std::string::npos);
    EXPECT_NE(records.reports->infos[0].find("KDV_SAS_SCENARIO"), std::string::npos);
}

} // namespace
} // namespace KDV
