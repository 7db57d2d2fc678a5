// Captures of the machine of two boxes that the module in tests/vm/module makes, in health and with the faults of
// test_bench.py, every field of every record. What the records have to say follows from module/machine.c and those
// faults. The kernel gives its disk names in the order in which drives are plugged in.
#include "LiveRecords.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace KDV {
namespace {

using Texts = std::vector<std::string>;

enum Speed : unsigned { NoSpeed, Rpm7200 = 2, Rpm10000 = 3, Rpm15000 = 4 };
enum Interface : unsigned { Sata = 1, Sas = 2 };

// A drive as the module has it, and where.
struct Drive {
    unsigned number;
    std::string location;
    unsigned box; // 0 none
    std::uint64_t blocks;
    unsigned blockBytes;
    Speed speed;
    Interface interface;
    std::string vendorAndModel, revision, serial, osName, name;
    unsigned status = 2;
    std::string solidState{};
};

std::string line(const char* field, std::uint64_t value)
{
    return value == 0 ? "" : std::string(field) + " = " + std::to_string(value) + "\n";
}

std::string line(const char* field, const std::string& value) { return std::string(field) + " = " + value + "\n"; }

std::string textOf(const Drive& drive)
{
    constexpr unsigned boxBase = 268435456;
    return line("driveNumber", drive.number) + line("size", drive.blocks * drive.blockBytes >> 20) +
           line("status", drive.status) + "usage = 4\n" + line("rotationalSpeed", drive.speed) +
           line("hotPlug", drive.box != 0 ? 2 : 0) + line("interface", drive.interface) +
           line("hotPlugLocation", drive.location) + line("location", drive.location) +
           line("inquiry", drive.vendorAndModel) + line("firmwareRevision", drive.revision) +
           line("serialNumber", drive.serial) + line("osName", drive.osName) + line("name", drive.name) +
           line("blockSize", drive.blockBytes) + line("blockCount", drive.blocks) + drive.solidState +
           "carrierAuthStatus = 2\n" + line("boxIdentifier", drive.box != 0 ? boxBase + drive.box : 0);
}

std::string boxText(unsigned number, const char* model, const char* revision, const char* serial, unsigned bays,
                    unsigned fans = 2, unsigned power = 2, unsigned temperature = 2, unsigned status = 2)
{
    return line("boxNumber", number) + line("model", std::string(model)) +
           line("firmwareVersion", std::string(revision)) + "manufacturer = ACMEBOX\n" + line("fanStatus", fans) +
           line("status", status) + line("temperatureStatus", temperature) + line("powerStatus", power) +
           line("driveBays", bays) + line("serialNumber", std::string(serial)) +
           line("name", "Port 0 Box " + std::to_string(number));
}

std::string volumeText(unsigned status, unsigned redundancy)
{
    return "size = 400000\nrebuildingDrive = 4294967295\nraidLevel = 5\n" + line("status", status) +
           "osName = /dev/sdl\n" + line("redundancyState", redundancy);
}

constexpr char adapterText[] = "logicalLocation = Slot 3\nslotNumber = 3\nmodelCode = 2\narraySystemStatus = 2\n"
                               "controllerStatus = 2\nfirmwareVersion = 16.00.12.00\n"
                               "name = ACME SAS3508-8i ACMEHBA00042\n";

std::vector<Drive> drivesInHealth()
{
    std::vector<Drive> drives = {
        {6, "Port 6 Device 6", 0, 2344225968, 512, Rpm10000, Sas, "ACMEDISK AD1200-10K", "TT31", "ADK000000011",
         "/dev/sdj", "5DB10000000001B0"},
        {7, "Port 7 Device 7", 0, 468862128, 512, NoSpeed, Sata, "ATA     FC240 SATA SSD", "SBFM0001", "FCL000000012",
         "/dev/sdk", "5DB10000000001C0"},
        {1001, "Port 0 Box 1 Bay 1", 1, 2344225968, 512, Rpm10000, Sas, "ACMEDISK AD1200-10K", "TT31", "ADA000000001",
         "/dev/sda", "5DB1000000000110"},
        // It has more blocks of 512 bytes than the field can count.
        {1002, "Port 0 Box 1 Bay 2", 1, 976754646, 4096, Rpm7200, Sas, "ACMEDISK AD4000-7K2", "N5Z1", "ADB000000002",
         "/dev/sdc", "5DB1000000000120"},
        {1003, "Port 0 Box 1 Bay 3", 1, 1875385008, 512, NoSpeed, Sas, "FLASHCO FC960 ENT", "GXA0", "FCC000000003",
         "/dev/sdd", "5DB1000000000130"},
        {1004, "Port 0 Box 1 Bay 4", 1, 3907029168, 512, Rpm7200, Sata, "ATA     AD2000-SATA", "SN02.117",
         "ADD000000004", "/dev/sde", "5DB1000000000140"},
        {1005, "Port 0 Box 1 Bay 5", 1, 1953506646, 4096, Rpm7200, Sas, "ACMEDISK AD8000-4KN", "N5Z1", "ADE000000005",
         "/dev/sdf", "5DB1000000000150"},
        {1006, "Port 0 Box 1 Bay 6", 1, 1172123568, 512, Rpm15000, Sas, "ACMEDISK AD0600-15K", "0803", "ADF000000006",
         "/dev/sdg", "5DB1000000000160"},
        {2000, "Port 0 Box 2 Bay 0", 2, 585937500, 512, Rpm10000, Sas, "ACMEDISK AD0300-10K", "1.0", "ADH000000008",
         "/dev/sdh", "5DB1000000000180"},
        {2001, "Port 0 Box 2 Bay 1", 2, 781422768, 512, NoSpeed, Sas, "FLASHCO FC400 WRITE", "GXB1", "FCI000000009",
         "/dev/sdi", "5DB1000000000190", 10},
    };
    drives[1].solidState = "mediaType = 3\nssdLifeRemaining = 100\n";
    drives[4].solidState = "mediaType = 3\nssdPowerOnHours = 9001\nssdEnduranceUsed = 7\nssdLifeRemaining = 93\n";
    drives[9].solidState = "mediaType = 3\nssdWearStatus = 255\nssdPowerOnHours = 12\nssdEnduranceUsed = 100\n";
    return drives;
}

class CapturedBench : public testing::Test {
protected:
    void read(const std::string& machine)
    {
        const std::string root = std::string(KDV_CAPTURED_MACHINES) + "/" + machine + "/sys";
        ASSERT_TRUE(std::filesystem::is_directory(root)) << root;
        SysfsSettings settings;
        settings.firstAnswers = std::chrono::seconds(60); // pages are read in no time, but tests may run under load
        SysfsSurroundings surroundings;
        surroundings.reportError = [to = errors](const std::string& text) {
            const std::lock_guard<std::mutex> guard(to->lock);
            to->errors.push_back(text);
        };
        surroundings.reportInfo = [](const std::string&) {};
        surroundings.opener = makeCaptureOpener(root);
        source = std::make_unique<SysfsSource>(root, settings, surroundings);
        source->load(tree);
    }

    template <class Record>
    static Texts texts(const Record* head)
    {
        Texts all;
        for (; head; head = head->next.get())
            all.push_back(fieldsOf(*head));
        return all;
    }

    void expectDrives(const std::vector<Drive>& drives)
    {
        const Texts found = texts(tree.head()->physicalDrives.get());
        ASSERT_EQ(found.size(), drives.size());
        for (std::size_t i = 0; i < drives.size(); ++i)
            EXPECT_EQ(found[i], textOf(drives[i]));
    }

    std::shared_ptr<Reports> errors = std::make_shared<Reports>();
    RecordTree tree;
    std::unique_ptr<SysfsSource> source;
};

TEST_F(CapturedBench, InHealth)
{
    ASSERT_NO_FATAL_FAILURE(read("bench"));
    EXPECT_EQ(texts(tree.head()), Texts{adapterText});
    expectDrives(drivesInHealth());
    EXPECT_EQ(texts(tree.head()->storageBoxes.get()), (Texts{boxText(1, "SHELF8", "0107", "SHELF-A-0001", 8),
                                                             boxText(2, "SHELF4", "0203", "SHELF-B-0002", 4)}));
    EXPECT_EQ(texts(tree.head()->logicalDrives.get()), Texts{volumeText(2, 2)});
    EXPECT_EQ(errors->errors, Texts{});
}

TEST_F(CapturedBench, WithFaultsEverywhere)
{
    ASSERT_NO_FATAL_FAILURE(read("bench-faults"));
    EXPECT_EQ(texts(tree.head()), Texts{adapterText});
    std::vector<Drive> drives = drivesInHealth();
    drives[4].status = 3;             // predicts its failure
    drives[5].status = 4;             // its box says that it failed
    drives[6].status = 6;             // not ready
    drives[7].status = 0;             // hangs: nothing is known
    drives[8].status = 3;             // its box predicts the failure
    drives.erase(drives.begin() + 3); // pulled, and a second way was cut, whose name is free
    drives.insert(drives.begin() + 7, {1007, "Port 0 Box 1 Bay 7", 1, 1172123568, 512, Rpm15000, Sas,
                                       "ACMEDISK AD0600-15K", "0803", "ADG000000007", "/dev/sdb", "5DB1000000000170"});
    expectDrives(drives);
    EXPECT_EQ(texts(tree.head()->storageBoxes.get()),
              (Texts{boxText(1, "SHELF8", "0107", "SHELF-A-0001", 8, 3, 2, 2, 4),
                     boxText(2, "SHELF4", "0203", "SHELF-B-0002", 4, 2, 5, 3, 4)}));
    EXPECT_EQ(texts(tree.head()->logicalDrives.get()), Texts{volumeText(3, 4)});
    ASSERT_EQ(errors->errors.size(), 1U);
    EXPECT_NE(errors->errors[0].find("does not answer in time"), std::string::npos) << errors->errors[0];
}

} // namespace
} // namespace KDV
