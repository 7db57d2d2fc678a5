// The shared library where nobody chooses a scenario: it reads the tree that KDV_SYSFS_ROOT names, takes its intervals
// from the configuration file, and asks the process for a pass through a name that it finds when it is loaded.
#include "FakeSysfs.h"
#include "records/SasDataLibrary.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace {
std::atomic<int> passesWanted{0};
}

// Stands for the one of the common library.
extern "C" __attribute__((visibility("default"))) void kdvRequestPass() noexcept;
void kdvRequestPass() noexcept { ++passesWanted; }

namespace KDV {
namespace {

class LiveLibrary : public testing::Test {
protected:
    LiveLibrary()
    {
        unsetenv("KDV_SAS_SCENARIO");
        setenv("KDV_SYSFS_ROOT", sysfs.root().c_str(), 1);
        setenv("KDV_CONFIG_DIR", sysfs.root().c_str(), 1);
    }

    std::string attach(const std::string& kernelNumber, const std::string& serial)
    {
        FakeDisk disk;
        disk.address = "0:0:" + kernelNumber + ":0";
        disk.serial = serial;
        disk.wwid = "";
        disk.parent = "port-0:" + kernelNumber;
        disk.endDevice = "end_device-0:" + kernelNumber;
        sysfs.addPort(host, disk.parent, {3});
        return sysfs.addDisk(host, disk);
    }

    FakeSysfs sysfs;
    std::string host = sysfs.addHba({0, "pci0000:00/0000:00:05.0", "mpt3sas", "running", true, {}});
    SasDataRoot root{};
};

TEST_F(LiveLibrary, ReadsTheMachineWhereNoScenarioIsChosen)
{
    attach("0", "SP0001");
    sysfs.page("0:0:0:0", "ready", "ready");
    CreateSasLists(&root);
    root.initialLoad = 1;
    UpdateSasData(&root);
    ASSERT_TRUE(root.hbas);
    EXPECT_EQ(textOf(root.hbas->name), "mpt3sas 0000:00:05.0");
    ASSERT_TRUE(root.hbas->physicalDrives);
    EXPECT_EQ(textOf(root.hbas->physicalDrives->serialNumber), "SP0001");
    EXPECT_EQ(root.hbas->physicalDrives->status, 2);
}

TEST_F(LiveLibrary, ReadsACaptureByTheFolderAboveItsTreeToo)
{
    attach("0", "SP0001");
    sysfs.page("0:0:0:0", "ready", "ready");
    for (const std::string above : {"/..", "/../", "/../sys/"}) {
        setenv("KDV_SYSFS_ROOT", (sysfs.root() + above).c_str(), 1);
        SasDataRoot own{};
        CreateSasLists(&own);
        ASSERT_TRUE(own.hbas) << above;
        ASSERT_TRUE(own.hbas->physicalDrives) << above;
        EXPECT_EQ(own.hbas->physicalDrives->status, 2) << above;
    }
}

TEST_F(LiveLibrary, AsksForAPassThroughTheNameThatTheProcessHas)
{
    const std::string first = attach("0", "SP0001");
    CreateSasLists(&root);
    ASSERT_TRUE(root.hbas->physicalDrives);
    sysfs.removeDisk(first);
    attach("1", "SP0002");
    const int before = passesWanted;
    UpdateSasData(&root);
    EXPECT_FALSE(root.hbas->physicalDrives);
    EXPECT_EQ(passesWanted, before + 1);
    UpdateSasData(&root);
    EXPECT_EQ(textOf(root.hbas->physicalDrives->serialNumber), "SP0002");
}

TEST_F(LiveLibrary, TakesItsIntervalsFromTheConfigurationFileOrRefusesIt)
{
    const std::pair<const char*, bool> cases[] = {
        {R"({"diskPollSeconds": 300, "boxPollSeconds": 5, "deviceDeadlineSeconds": 30})", true},
        {R"({})", true},
        {R"({"diskPollSeconds": 0})", false},
        {R"({"boxPollSeconds": "often"})", false},
        {R"({"deviceDeadlineSeconds": -1})", false},
        {R"({"diskPollSecond": 300})", false}};
    for (const auto& [text, good] : cases) {
        sysfs.file("KDVSasHbaMRA.json", text);
        SasDataRoot own{};
        CreateSasLists(&own);
        EXPECT_EQ(static_cast<bool>(own.hbas), good) << text;
    }
}

} // namespace
} // namespace KDV
