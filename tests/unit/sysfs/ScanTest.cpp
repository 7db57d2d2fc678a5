// What a scan notices at once and what in turn, on a machine with more disks than are read anew at each scan.
#include "FakeSysfs.h"
#include "sashba/sysfs/SysfsScan.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace KDV {
namespace {

constexpr unsigned disks = 200;

class ManyDisks : public testing::Test {
protected:
    ManyDisks()
    {
        for (unsigned i = 0; i < disks; ++i)
            paths.push_back(add(i, "SP" + std::to_string(i)));
    }

    std::string add(unsigned target, const std::string& serial)
    {
        const std::string n = std::to_string(target);
        FakeDisk disk;
        disk.address = "0:0:" + n + ":0";
        disk.block = "sdx" + n;
        disk.serial = serial;
        disk.wwid = "";
        disk.parent = "port-0:" + n;
        disk.endDevice = "end_device-0:" + n;
        return sysfs.addDisk(host, disk);
    }

    // Nothing when the last scan did not find it.
    const ScsiDevice* find(const LiveMachine& machine, unsigned target) const
    {
        const auto found = std::find_if(machine.devices.begin(), machine.devices.end(),
                                        [&](const ScsiDevice& device) { return device.address.target == target; });
        return found == machine.devices.end() ? nullptr : &*found;
    }

    FakeSysfs sysfs;
    std::string host = sysfs.addHba({});
    std::vector<std::string> paths;
    SysfsTree tree{sysfs.root()};
    SysfsScan scan{tree};
};

TEST_F(ManyDisks, AreInTheOrderOfTheirAddressesAtEveryScan)
{
    for (int turn = 0; turn < 6; ++turn) {
        const LiveMachine& machine = scan.scan();
        ASSERT_EQ(machine.devices.size(), disks);
        for (unsigned i = 0; i < disks; ++i) {
            EXPECT_EQ(machine.devices[i].address.target, i);
            EXPECT_EQ(machine.devices[i].serial, "SP" + std::to_string(i));
            EXPECT_EQ(machine.devices[i].path, paths[i]);
        }
    }
}

TEST_F(ManyDisks, AReplacedOneIsSeenAtOnceWhereverTheTurnIs)
{
    scan.scan();
    for (const unsigned target : {0U, 63U, 64U, 150U, 199U}) {
        const std::string serial = "NEW" + std::to_string(target);
        sysfs.removeDisk(paths[target]);
        add(target, serial);
        const LiveMachine& machine = scan.scan();
        ASSERT_EQ(machine.devices.size(), disks);
        ASSERT_NE(find(machine, target), nullptr);
        EXPECT_EQ(find(machine, target)->serial, serial);
    }
}

TEST_F(ManyDisks, ThoseThatGoAndComeBesideOthersLeaveThemAsTheyAre)
{
    scan.scan();
    for (const unsigned target : {0U, 77U, 199U}) {
        sysfs.removeDisk(paths[target]);
        const LiveMachine& without = scan.scan();
        EXPECT_EQ(without.devices.size(), disks - 1);
        EXPECT_EQ(find(without, target), nullptr);
        add(target, "SP" + std::to_string(target));
        const LiveMachine& with = scan.scan();
        ASSERT_EQ(with.devices.size(), disks);
        for (unsigned i = 0; i < disks; ++i)
            EXPECT_EQ(with.devices[i].serial, "SP" + std::to_string(i));
    }
}

TEST_F(ManyDisks, EveryStateIsReadAtEveryScan)
{
    scan.scan();
    for (unsigned target = 5; target < disks; target += 40) {
        sysfs.file(paths[target] + "/state", "offline\n");
        const LiveMachine& machine = scan.scan();
        ASSERT_NE(find(machine, target), nullptr);
        EXPECT_EQ(find(machine, target)->state, "offline");
    }
}

TEST_F(ManyDisks, AGrownOneIsSeenWithinARound)
{
    scan.scan();
    for (unsigned target = 0; target < disks; ++target)
        sysfs.file(paths[target] + "/block/sdx" + std::to_string(target) + "/size", "4096\n");
    for (int turn = 0; turn < 3; ++turn)
        scan.scan();
    for (const ScsiDevice& device : scan.scan().devices)
        EXPECT_EQ(device.sectors, 4096U) << device.path;
}

TEST_F(ManyDisks, AllGoWithTheAdapter)
{
    scan.scan();
    sysfs.remove("class/scsi_host/host0");
    sysfs.remove("class/sas_host/host0");
    EXPECT_TRUE(scan.scan().devices.empty());
    sysfs.link("class/scsi_host/host0", host + "/scsi_host/host0");
    EXPECT_EQ(scan.scan().devices.size(), disks);
}

} // namespace
} // namespace KDV
