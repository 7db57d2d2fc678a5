// A machine written as a scenario and read again is the same machine.
#include "sashba/sysfs/ScenarioWriter.h"

#include "LiveRecords.h"
#include "PageBytes.h"
#include "sashba/scenario/ScenarioReader.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

TEST(ScenarioWriter, WritesWhatTheReaderMakesTheSameRecordsOf)
{
    FakeSysfs sysfs;
    const std::string host = sysfs.addHba({0,
                                           "pci0000:00/0000:00:05.0",
                                           "mpt3sas",
                                           "running",
                                           true,
                                           {{"board_name", "ZX \"9300\""}, {"board_tracer", "SP1"}}});
    std::vector<std::string> devices;
    for (unsigned i = 0; i < 3; ++i) {
        const std::string n = std::to_string(i);
        sysfs.addPort(host, "port-0:" + n, {i});
        FakeDisk disk;
        disk.address = "0:0:" + n + ":0";
        disk.block = std::string("sd") + static_cast<char>('a' + i);
        disk.wwid = "naa.5000a7200124000" + n;
        disk.rotation = i == 0 ? 1 : 10500;
        disk.parent = "port-0:" + n;
        disk.endDevice = "end_device-0:" + n;
        devices.push_back(sysfs.addDisk(host, disk));
        sysfs.page(disk.address, "ready", i == 2 ? "no connect" : "ready");
    }
    sysfs.addExpander(sysfs.addPort(host, "port-0:9", {9}), "expander-0:0", "0x500a098000005000");
    const std::string md = sysfs.addMd("md0", "raid1", 2);
    sysfs.addMdMember(md, devices[0], "sda", "0", "in_sync");
    sysfs.addMdMember(md, devices[1], "sdb", "none", "spare");
    const LiveRecords records(sysfs);

    Problems problems;
    const std::optional<Scenario> read = readScenario(scenarioOf(records.tree.head()), problems);
    ASSERT_TRUE(read) << problems.text();
    RecordTree tree;
    tree.take(read->machine);
    ASSERT_NE(tree.head(), nullptr);
    EXPECT_EQ(fieldsOf(*tree.head()), fieldsOf(records.hba()));
    const auto drives = LiveRecords::list<SasPhysicalDriveRecord>(tree.head()->physicalDrives.get());
    ASSERT_EQ(drives.size(), 3U);
    for (std::size_t i = 0; i < drives.size(); ++i)
        EXPECT_EQ(fieldsOf(*drives[i]), fieldsOf(*records.drives()[i]));
    ASSERT_TRUE(tree.head()->logicalDrives);
    EXPECT_EQ(fieldsOf(*tree.head()->logicalDrives.get()), fieldsOf(*records.volumes().at(0)));
    ASSERT_TRUE(tree.head()->storageBoxes);
    EXPECT_EQ(fieldsOf(*tree.head()->storageBoxes.get()), fieldsOf(*records.boxes().at(0)));
}

TEST(ScenarioWriter, WritesAMachineWithoutAdaptersToo)
{
    Problems problems;
    const std::optional<Scenario> read = readScenario(scenarioOf(nullptr), problems);
    ASSERT_TRUE(read) << problems.text();
    EXPECT_TRUE(read->machine.empty());
}

} // namespace
} // namespace KDV
