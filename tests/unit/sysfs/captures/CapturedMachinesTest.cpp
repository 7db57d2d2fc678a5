// Captures of virtual machines, every field of every record. What the records have to say follows from the description
// of the emulated hardware in tests/vm (test_adapter.py, test_shelf.py, test_arrays.py), which is repeated here.
#include "LiveRecords.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace KDV {
namespace {

constexpr char adapterText[] = "logicalLocation = Slot 3\nslotNumber = 3\nmodelCode = 2\narraySystemStatus = 2\n"
                               "controllerStatus = 2\nfirmwareVersion = 01.50.146.00\n"
                               "name = QEMU MPT Fusion 0000111122223333\n";

// A drive as the machine was told to have it.
struct Drive {
    unsigned number;
    std::uint64_t bytes;
    unsigned speed;
    std::string location, vendorAndModel, revision, serial, osName, name;
    bool inBox = false;
    unsigned status = 2, usage = 4, block = 512;
    std::string solidState{}; // what stands in its record for that
};

std::string line(const char* field, std::uint64_t value)
{
    return value == 0 ? "" : std::string(field) + " = " + std::to_string(value) + "\n";
}

std::string textOf(const Drive& drive)
{
    return line("driveNumber", drive.number) + line("size", drive.bytes / (1 << 20)) + line("status", drive.status) +
           line("usage", drive.usage) + line("rotationalSpeed", drive.speed) + (drive.inBox ? "hotPlug = 2\n" : "") +
           "interface = 2\nhotPlugLocation = " + drive.location + "\nlocation = " + drive.location +
           "\ninquiry = " + drive.vendorAndModel + "\nfirmwareRevision = " + drive.revision +
           "\nserialNumber = " + drive.serial + "\nosName = " + drive.osName + "\nname = " + drive.name + "\n" +
           line("blockSize", drive.block) + line("blockCount", drive.bytes / drive.block) + drive.solidState +
           "carrierAuthStatus = 2\n" + (drive.inBox ? "boxIdentifier = 268435457\n" : "");
}

std::vector<std::string> textsOf(const std::vector<Drive>& drives)
{
    std::vector<std::string> texts;
    texts.reserve(drives.size());
    for (const Drive& drive : drives)
        texts.push_back(textOf(drive));
    return texts;
}

// The records of one captured machine.
class CapturedRecords {
public:
    explicit CapturedRecords(const std::string& machine)
    {
        const std::string root = std::string(KDV_CAPTURED_MACHINES) + "/" + machine + "/sys";
        EXPECT_TRUE(std::filesystem::is_directory(root)) << root;
        SysfsSettings settings;
        settings.firstAnswers = std::chrono::seconds(60); // pages are read in no time, but tests may run under load
        SysfsSurroundings surroundings;
        surroundings.reportError = [](const std::string& text) { ADD_FAILURE() << "an error was reported: " << text; };
        surroundings.reportInfo = [](const std::string&) {};
        surroundings.requestPass = [] {};
        surroundings.opener = makeCaptureOpener(root);
        _source = std::make_unique<SysfsSource>(root, settings, surroundings);
        _source->load(_tree);
    }

    std::vector<std::string> hbas() const { return texts(_tree.head()); }
    std::vector<std::string> drives() const { return texts(_tree.head()->physicalDrives.get()); }
    std::vector<std::string> boxes() const { return texts(_tree.head()->storageBoxes.get()); }
    std::vector<std::string> volumes() const { return texts(_tree.head()->logicalDrives.get()); }

private:
    template <class Record>
    static std::vector<std::string> texts(const Record* head)
    {
        std::vector<std::string> all;
        for (; head; head = head->next.get())
            all.push_back(fieldsOf(*head));
        return all;
    }

    RecordTree _tree;
    std::unique_ptr<SysfsSource> _source;
};

using Texts = std::vector<std::string>;

TEST(CapturedMachine, WithFourDisksAtAnAdapter)
{
    const CapturedRecords records("adapter");
    EXPECT_EQ(records.hbas(), Texts{adapterText});
    Drive spindle1200{0,      1200243695616, 3,          "Port 0 Device 0", "ACME    SPINDLE 1200",
                      "TT31", "SP0001",      "/dev/sda", "5000A72000000010"};
    Drive spindle4000{1,      4000787030016, 2,          "Port 1 Device 1", "ACME    SPINDLE 4000",
                      "N5Z1", "SP0002",      "/dev/sdb", "5000A72000000020"};
    spindle4000.block = 4096; // it has more blocks of 512 bytes than fit
    Drive flash960{2,      960197124096, 0,          "Port 2 Device 2", "GLOBEX  FLASH 960",
                   "GXA0", "FL0003",     "/dev/sdc", "5000A72000000030"};
    flash960.solidState = "mediaType = 3\nssdWearStatus = 255\n"; // the emulator's disks tell no wear: -1
    Drive spindle600{3,      600127266816, 4,          "Port 3 Device 3", "GLOBEX  SPINDLE 600 4K",
                     "0803", "SP0004",     "/dev/sdd", "5000A72000000040"};
    spindle600.block = 4096;
    EXPECT_EQ(records.drives(), textsOf({spindle1200, spindle4000, flash960, spindle600}));
    EXPECT_EQ(records.boxes(), Texts{});
    EXPECT_EQ(records.volumes(), Texts{});
}

std::vector<Drive> drivesOfTheShelf()
{
    Drive spindle1200{1001,   1200243695616, 3,          "Port 0 Box 1 Bay 1", "ACME    SPINDLE 1200",
                      "TT31", "SP0001",      "/dev/sda", "5000A72000000010"};
    Drive flash960{1002,   960197124096, 0,          "Port 1 Box 1 Bay 2", "GLOBEX  FLASH 960",
                   "GXA0", "FL0002",     "/dev/sdb", "5000A72000000020"};
    flash960.solidState = "mediaType = 3\nssdPowerOnHours = 5012\nssdEnduranceUsed = 7\nssdLifeRemaining = 93\n";
    Drive spindle600{1004,   600127266816, 4,          "Port 2 Box 1 Bay 4", "ACME    SPINDLE 600",
                     "0803", "SP0003",     "/dev/sdc", "5000A72000000030"};
    spindle1200.inBox = flash960.inBox = spindle600.inBox = true;
    return {spindle1200, flash960, spindle600};
}

TEST(CapturedMachine, WithThreeDisksInAShelf)
{
    const CapturedRecords records("shelf");
    EXPECT_EQ(records.hbas(), Texts{adapterText});
    EXPECT_EQ(records.drives(), textsOf(drivesOfTheShelf()));
    EXPECT_EQ(records.boxes(), Texts{"boxNumber = 1\nmodel = SHELF 6\nfirmwareVersion = 0212\nmanufacturer = GLOBEX\n"
                                     "fanStatus = 2\nstatus = 2\ntemperatureStatus = 2\npowerStatus = 2\n"
                                     "driveBays = 6\nserialNumber = GS6-0001\nname = Port 3 Box 1\n"});
    EXPECT_EQ(records.volumes(), Texts{});
}

TEST(CapturedMachine, WithFaultsInAShelf)
{
    const CapturedRecords records("shelf-faults");
    EXPECT_EQ(records.hbas(), Texts{adapterText});
    std::vector<Drive> drives = drivesOfTheShelf();
    drives[0].status = 3; // predicts its failure
    drives[1].status = 10;
    drives[1].solidState = "mediaType = 3\nssdWearStatus = 255\nssdPowerOnHours = 5012\nssdEnduranceUsed = 100\n";
    drives[2].status = 6; // not ready
    EXPECT_EQ(records.drives(), textsOf(drives));
    EXPECT_EQ(records.boxes(), Texts{"boxNumber = 1\nmodel = SHELF 6\nfirmwareVersion = 0212\nmanufacturer = GLOBEX\n"
                                     "fanStatus = 5\nstatus = 4\ntemperatureStatus = 4\npowerStatus = 3\n"
                                     "driveBays = 6\nserialNumber = GS6-0001\nname = Port 3 Box 1\n"});
    EXPECT_EQ(records.volumes(), Texts{});
}

std::vector<Drive> drivesOfTheMirror()
{
    std::vector<Drive> drives;
    for (unsigned number = 0; number < 4; ++number) {
        const std::string n = std::to_string(number);
        drives.push_back({number, 128U << 20, 3, "Port " + n + " Device " + n, "ACME    SPINDLE", "0001",
                          "MD000" + std::to_string(number + 1), std::string("/dev/sd") + "abcd"[number],
                          "5000A720000001" + n + "0"});
    }
    return drives;
}

TEST(CapturedMachine, WithAMirrorAndItsSpare)
{
    const CapturedRecords records("mirror");
    EXPECT_EQ(records.hbas(), Texts{adapterText});
    std::vector<Drive> drives = drivesOfTheMirror();
    drives[0].usage = drives[1].usage = 2;
    drives[2].usage = 3;
    EXPECT_EQ(records.drives(), textsOf(drives));
    EXPECT_EQ(records.boxes(), Texts{});
    EXPECT_EQ(records.volumes(), Texts{"logicalDriveNumber = 1000\nsize = 96\nrebuildingDrive = 4294967295\n"
                                       "raidLevel = 3\nstatus = 2\nosName = /dev/md0\nredundancyState = 2\n"
                                       "memberCount = 2\nmembers = 0 1\nspareCount = 1\nspares = 2\n"});
}

TEST(CapturedMachine, WithAMirrorThatIsRebuiltOnItsSpare)
{
    const CapturedRecords records("mirror-rebuilding");
    EXPECT_EQ(records.hbas(), Texts{adapterText});
    std::vector<Drive> drives = drivesOfTheMirror();
    drives[0].usage = drives[2].usage = 2;
    EXPECT_EQ(records.drives(), textsOf(drives));
    EXPECT_EQ(records.boxes(), Texts{});
    EXPECT_EQ(records.volumes(), Texts{"logicalDriveNumber = 1000\nsize = 96\nrebuildingDrive = 2\nraidLevel = 3\n"
                                       "status = 3\nosName = /dev/md0\nredundancyState = 4\nmemberCount = 2\n"
                                       "members = 0 2\n"});
}

} // namespace
} // namespace KDV
