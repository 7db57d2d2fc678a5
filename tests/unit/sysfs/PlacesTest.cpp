// Where drives are: which box, which bay, which port, from the many who tell a part of it.
#include "LiveRecords.h"
#include "PageBytes.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

constexpr char enclosureId[] = "0x500a098000005080";

class LivePlaces : public testing::Test {
protected:
    std::string addHba(const std::string& driver = "mpt3sas", bool transport = true, unsigned number = 0)
    {
        FakeHba hba;
        hba.host = number;
        hba.pci = "pci0000:00/0000:0" + std::to_string(number + 1) + ":00.0";
        hba.driver = driver;
        hba.transport = transport;
        return sysfs.addHba(hba);
    }

    // A disk at a port of its own, which has the phy of that number.
    static FakeDisk diskAtPort(unsigned port)
    {
        const std::string n = std::to_string(port);
        FakeDisk disk;
        disk.address = "0:0:" + n + ":0";
        disk.block = std::string("sd") + static_cast<char>('a' + port);
        disk.serial = "SP000" + n;
        disk.wwid = "naa.5000a7200124000" + n;
        disk.sasAddress = "0x5000a7200124010" + n;
        disk.parent = "port-0:" + n;
        disk.endDevice = "end_device-0:" + n;
        disk.phy = n;
        return disk;
    }

    static FakeDisk processorAtPort(unsigned port)
    {
        FakeDisk ses = diskAtPort(port);
        ses.type = "13";
        ses.block = "";
        ses.rotation = 0;
        ses.vendor = "GLOBEX";
        ses.model = "SHELF 24";
        ses.serial = "GS24-0042";
        ses.wwid = "naa.500a09800000508" + std::to_string(port);
        return ses;
    }

    std::string attach(const std::string& host, const FakeDisk& disk)
    {
        if (disk.parent.find('/') == std::string::npos && !disk.parent.empty())
            sysfs.addPort(host, disk.parent, {static_cast<unsigned>(std::stoul(disk.phy))});
        return sysfs.addDisk(host, disk);
    }

    static FakeDisk behind(const std::string& expander, FakeDisk disk)
    {
        const std::string port = "port-0:" + expander.substr(expander.rfind(':') + 1) + ":" + disk.phy;
        disk.parent = expander.substr(expander.find("/port-") + 1) + "/" + port;
        disk.endDevice = "end_device" + port.substr(4);
        return disk;
    }

    static std::vector<std::string> locations(const LiveRecords& records, std::size_t hba = 0)
    {
        std::vector<std::string> all;
        for (const auto* drive : records.drives(hba))
            all.emplace_back(textOf(drive->location));
        return all;
    }

    using Texts = std::vector<std::string>;

    FakeSysfs sysfs;
};

TEST_F(LivePlaces, DrivesOfABackplaneAreEachAtTheirOwnPort)
{
    const std::string host = addHba("mptsas");
    const std::string enclosure = sysfs.addEnclosure(attach(host, processorAtPort(4)), enclosureId, 6);
    for (unsigned i = 0; i < 2; ++i) {
        FakeDisk disk = diskAtPort(i);
        disk.bay = "0";
        sysfs.putInSlot(attach(host, disk), enclosure, std::to_string(i + 2));
    }
    LiveRecords records(sysfs);
    EXPECT_EQ(locations(records), (Texts{"Port 0 Box 1 Bay 2", "Port 1 Box 1 Bay 3"}));
    EXPECT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{1002, 1003}));
    EXPECT_EQ(textOf(records.boxes().at(0)->name), "Port 4 Box 1");
}

TEST_F(LivePlaces, ABoxThatDoesNotNumberItsSlotsIsStillTheBoxOfItsDrives)
{
    const std::string host = addHba("mptsas");
    const std::string enclosure = sysfs.addEnclosure(attach(host, processorAtPort(4)), enclosureId, 6);
    for (unsigned i = 0; i < 2; ++i) {
        FakeDisk disk = diskAtPort(i);
        disk.bay = "0"; // of no enclosure: it would put all of them into one bay
        sysfs.putInSlot(attach(host, disk), enclosure, std::to_string(i));
        sysfs.remove(enclosure + "/Slot #" + std::to_string(i) + ", x/slot");
    }
    LiveRecords records(sysfs);
    EXPECT_EQ(locations(records), (Texts{"Port 0 Device 0", "Port 1 Device 1"}));
    EXPECT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{0, 1}));
    for (const auto* drive : records.drives()) {
        EXPECT_EQ(+drive->boxIdentifier, 0x10000001U);
        EXPECT_EQ(drive->hotPlug, 2);
    }
}

TEST_F(LivePlaces, AnAdapterThatKnowsTheEnclosureButNotTheBayIsHelpedByTheBox)
{
    const std::string host = addHba("smartpqi");
    sysfs.addEnclosure(attach(host, processorAtPort(4)), enclosureId, 6);
    FakeDisk disk = diskAtPort(0);
    disk.enclosureIdentifier = enclosureId; // its bay_identifier cannot be read
    attach(host, disk);
    sysfs.page("0:0:4:0", "ready", "ready");
    sysfs.page("0:0:4:0", "ses_01", sesConfiguration({{SesElement::arrayDeviceSlot, 6}}));
    sysfs.page("0:0:4:0", "ses_0a", sesPage(0x0A, 0, sesSlotDescriptor(2, 12, 0x5000a72001240100)));
    EXPECT_EQ(locations(LiveRecords(sysfs)), (Texts{"Port 0 Box 1 Bay 12"}));
    std::string withoutNumber = sesSlotDescriptor(2, 12, 0x5000a72001240100);
    withoutNumber[0] = 0x06; // without index and number: in the order of the bays
    withoutNumber.erase(2, 2).erase(4, 2);
    withoutNumber[1] = static_cast<char>(withoutNumber.size() - 2);
    sysfs.page("0:0:4:0", "ses_0a", sesPage(0x0A, 0, bytesOf({0x86, 30}) + std::string(30, '\0') + withoutNumber));
    EXPECT_EQ(locations(LiveRecords(sysfs)), (Texts{"Port 0 Box 1 Bay 1"}));
}

TEST_F(LivePlaces, TwoProcessorsOfOneBoxEachKnowTheirSideOfTheDrives)
{
    const std::string host = addHba();
    for (unsigned side = 4; side < 6; ++side) {
        sysfs.addEnclosure(attach(host, processorAtPort(side)), enclosureId, 2);
        const std::string address = "0:0:" + std::to_string(side) + ":0";
        sysfs.page(address, "ready", "ready");
        sysfs.page(address, "ses_01", sesConfiguration({{SesElement::arrayDeviceSlot, 2}}));
        sysfs.page(address, "ses_02", sesStatus(0, {{sesElement(SesCode::ok), sesElement(SesCode::ok)}}));
        sysfs.page(address, "ses_0a",
                   sesPage(0x0A, 0,
                           sesSlotDescriptor(static_cast<int>(side) - 4, static_cast<int>(side) - 3,
                                             0x5000a72001240100 + side - 4)));
    }
    for (unsigned i = 0; i < 2; ++i) {
        attach(host, diskAtPort(i));
        sysfs.page("0:0:" + std::to_string(i) + ":0", "ready", "ready");
    }
    LiveRecords records(sysfs);
    ASSERT_EQ(records.boxes().size(), 1U);
    EXPECT_EQ(records.boxes()[0]->status, 2);
    EXPECT_EQ(locations(records), (Texts{"Port 0 Box 1 Bay 1", "Port 1 Box 1 Bay 2"}));

    sysfs.page("0:0:4:0", "ready", "hung");
    LiveRecords later(sysfs);
    ASSERT_EQ(later.boxes().size(), 1U);
    EXPECT_EQ(later.boxes()[0]->status, 2) << "the other one still knows";
}

TEST_F(LivePlaces, ExpandersInsideALargeBoxAreNoBoxesOfTheirOwn)
{
    const std::string host = addHba();
    const std::string port = sysfs.addPort(host, "port-0:8", {8});
    const std::string first = sysfs.addExpander(port, "expander-0:0", "0x500a098000005000");
    const std::string second = sysfs.addExpander(first + "/port-0:0:9", "expander-0:1", "0x500a098000005100", "2");
    const std::string enclosure =
        sysfs.addEnclosure(sysfs.addDisk(host, behind(first, processorAtPort(4))), enclosureId, 60);
    sysfs.putInSlot(sysfs.addDisk(host, behind(second, diskAtPort(0))), enclosure, "40");
    FakeDisk byWiring = behind(second, diskAtPort(1));
    sysfs.addDisk(host, byWiring);
    LiveRecords records(sysfs);
    ASSERT_EQ(records.boxes().size(), 1U);
    EXPECT_EQ(records.boxes()[0]->driveBays, 60);
    EXPECT_EQ(locations(records), (Texts{"Port 8 Box 1 Bay 1", "Port 8 Box 1 Bay 40"}));
}

TEST_F(LivePlaces, ABoxOfAnAdapterWithoutTheTransportHasItsChannelForAPort)
{
    const std::string host = addHba("megaraid_sas", false);
    FakeDisk ses = processorAtPort(4);
    ses.endDevice = "";
    ses.address = "0:1:4:0";
    const std::string enclosure = sysfs.addEnclosure(sysfs.addDisk(host, ses), enclosureId, 8);
    FakeDisk disk = diskAtPort(3);
    disk.endDevice = "";
    sysfs.putInSlot(sysfs.addDisk(host, disk), enclosure, "3");
    LiveRecords records(sysfs);
    EXPECT_EQ(textOf(records.boxes().at(0)->name), "Port 1 Box 1");
    EXPECT_EQ(locations(records), (Texts{"Port 0 Box 1 Bay 3"}));
}

TEST_F(LivePlaces, TwoAdaptersAtOneBoxBothHaveItAndOneHasTheDrive)
{
    for (unsigned n = 0; n < 2; ++n) {
        const std::string host = addHba("mpt3sas", true, n);
        const std::string digit = std::to_string(n);
        const auto onHost = [&digit](FakeDisk disk) {
            disk.address[0] = digit[0];
            disk.parent[5] = digit[0];
            disk.endDevice[11] = digit[0];
            return disk;
        };
        FakeDisk disk = onHost(diskAtPort(0));
        disk.block = n ? "sdz" : "sda";
        disk.sasAddress.back() = digit[0];
        const std::string enclosure = sysfs.addEnclosure(attach(host, onHost(processorAtPort(4))), enclosureId, 2);
        sysfs.putInSlot(attach(host, disk), enclosure, "1");
    }
    LiveRecords records(sysfs);
    ASSERT_EQ(records.hbas().size(), 2U);
    EXPECT_EQ(locations(records, 0), (Texts{"Port 0 Box 1 Bay 1"}));
    EXPECT_EQ(locations(records, 1), Texts{});
    EXPECT_EQ(records.boxes(0).size(), 1U);
    EXPECT_EQ(records.boxes(1).size(), 1U);
    EXPECT_EQ(+records.boxes(1)[0]->hbaNumber, 1U);
}

TEST_F(LivePlaces, ConnectorsAreThoseThatTheDriverNamesForEachDrive)
{
    const std::string host = addHba("smartpqi");
    const char* infos[] = {"PORT: 1I BOX: 1 BAY: 1 Active", "PORT: 2I BOX: 1 BAY: 5 Active",
                           "PORT: 2I BOX: 255 BAY: 255 Active", "Active"};
    for (unsigned i = 0; i < 4; ++i)
        sysfs.file(attach(host, diskAtPort(i)) + "/path_info",
                   std::string("[0:0:0:0] Direct-Access ") + infos[i] + "\n");
    LiveRecords records(sysfs);
    ASSERT_EQ(records.boxes().size(), 1U);
    EXPECT_EQ(textOf(records.boxes()[0]->name), "Port 1I Box 1");
    EXPECT_EQ(locations(records),
              (Texts{"Port 2I Device 2", "Port 3 Device 3", "Port 1I Box 1 Bay 1", "Port 2I Box 1 Bay 5"}));
    EXPECT_EQ(records.drives()[0]->placement, 2);
    EXPECT_EQ(records.drives()[1]->placement, 0);
}

TEST_F(LivePlaces, TheAdaptersOwnEnclosureIdentifierIsNoBox)
{
    const std::string host = addHba();
    FakeDisk disk = diskAtPort(5);
    disk.enclosureIdentifier = "0x500605b0009988c0";
    disk.bay = "3";
    attach(host, disk);
    LiveRecords records(sysfs);
    EXPECT_EQ(locations(records), (Texts{"Port 5 Device 3"}));
    EXPECT_TRUE(records.boxes().empty());
}

TEST_F(LivePlaces, ABayBeyondAllReasonIsNone)
{
    const std::string host = addHba();
    sysfs.addExpander(sysfs.addPort(host, "port-0:0", {0}), "expander-0:0", "0x500a098000005000");
    FakeDisk disk = diskAtPort(7);
    disk.enclosureIdentifier = "0x500a098000005000";
    disk.bay = "65535";
    disk.parent = "port-0:0/expander-0:0/port-0:0:7";
    disk.endDevice = "end_device-0:0:7";
    sysfs.addDisk(host, disk);
    EXPECT_EQ(locations(LiveRecords(sysfs)), (Texts{"Port 0 Box 1 Bay 7"})) << "by its wiring";
}

TEST_F(LivePlaces, ADriveWithoutABlockDeviceIsNotCalledFreeForUse)
{
    FakeDisk disk = diskAtPort(2);
    disk.block = "";
    attach(addHba(), disk);
    LiveRecords records(sysfs);
    EXPECT_EQ(fieldsOf(*records.drives().at(0)),
              "driveNumber = 2\nrotationalSpeed = 3\ninterface = 2\nhotPlugLocation = Port 2 Device 2\n"
              "location = Port 2 Device 2\ninquiry = ACME    SPINDLE 600\nfirmwareRevision = SP07\n"
              "serialNumber = SP0002\nname = 5000A72001240002\ncarrierAuthStatus = 2\n");
}

} // namespace
} // namespace KDV
