// Volumes: those of the adapter's firmware as far as the kernel tells of them, and md arrays with everything.
#include "LiveRecords.h"
#include "sashba/sysfs/VolumePlan.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

// Four directly attached disks on host 0 with the numbers 0 to 3.
class LiveArrays : public testing::Test {
protected:
    LiveArrays()
    {
        host = sysfs.addHba({});
        for (unsigned i = 0; i < 4; ++i) {
            const std::string n = std::to_string(i);
            sysfs.addPort(host, "port-0:" + n, {i});
            FakeDisk disk;
            disk.address = "0:0:" + n + ":0";
            disk.block = std::string("sd") + static_cast<char>('a' + i);
            disk.wwid = "naa.5000a7200124000" + n;
            disk.serial = "SP000" + n;
            disk.parent = "port-0:" + n;
            disk.endDevice = "end_device-0:" + n;
            disks.push_back(sysfs.addDisk(host, disk));
        }
    }

    std::string mirror()
    {
        const std::string md = sysfs.addMd("md7", "raid1", 2);
        sysfs.addMdMember(md, disks[0], "sda", "0", "in_sync");
        sysfs.addMdMember(md, disks[1], "sdb", "1", "in_sync");
        return md;
    }

    static std::vector<int> usages(const LiveRecords& records)
    {
        std::vector<int> all;
        for (const auto* drive : records.drives())
            all.push_back(drive->usage);
        return all;
    }

    FakeSysfs sysfs;
    std::string host;
    std::vector<std::string> disks;
};

TEST_F(LiveArrays, AMirrorWithASpare)
{
    const std::string md = mirror();
    sysfs.addMdMember(md, disks[2], "sdc", "none", "spare");
    LiveRecords records(sysfs);
    ASSERT_EQ(records.volumes().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.volumes()[0]),
              "logicalDriveNumber = 1007\nsize = 1024\nrebuildingDrive = 4294967295\nraidLevel = 3\nstatus = 2\n"
              "osName = /dev/md7\nredundancyState = 2\nmemberCount = 2\nmembers = 0 1\nspareCount = 1\nspares = 2\n");
    EXPECT_EQ(usages(records), (std::vector<int>{2, 2, 3, 4}));
}

TEST_F(LiveArrays, AMirrorThatLostADriveRebuildsOnItsSpare)
{
    const std::string md = mirror();
    sysfs.addMdMember(md, disks[2], "sdc", "none", "spare");
    LiveRecords records(sysfs);
    sysfs.file(md + "/dev-sdb/state", "faulty\n");
    sysfs.file(md + "/dev-sdb/slot", "none\n");
    sysfs.file(md + "/degraded", "1\n");
    records.refresh();
    EXPECT_EQ(fieldsOf(*records.volumes()[0]),
              "logicalDriveNumber = 1007\nsize = 1024\nrebuildingDrive = 4294967295\nraidLevel = 3\nstatus = 3\n"
              "osName = /dev/md7\nredundancyState = 3\nmemberCount = 1\nspareCount = 1\nspares = 2\n");
    EXPECT_EQ(usages(records), (std::vector<int>{2, 4, 3, 4}));

    sysfs.file(md + "/dev-sdc/slot", "1\n");
    sysfs.file(md + "/sync_action", "recover\n");
    records.refresh();
    EXPECT_EQ(fieldsOf(*records.volumes()[0]),
              "logicalDriveNumber = 1007\nsize = 1024\nrebuildingDrive = 2\nraidLevel = 3\nstatus = 3\n"
              "osName = /dev/md7\nredundancyState = 4\nmemberCount = 2\nmembers = 0 2\n");

    sysfs.file(md + "/dev-sdc/state", "in_sync\n");
    sysfs.file(md + "/sync_action", "idle\n");
    sysfs.file(md + "/degraded", "0\n");
    records.refresh();
    EXPECT_EQ(records.volumes()[0]->status, 2);
    EXPECT_EQ(records.volumes()[0]->redundancyState, 2);
    EXPECT_EQ(+records.volumes()[0]->rebuildingDrive, 0xFFFFFFFFU);
}

TEST_F(LiveArrays, TooManyMissingDrivesOrADeadStateIsAFailedArray)
{
    struct {
        const char *level, *state, *degraded;
        unsigned disks;
        int status, redundancy;
    } const cases[] = {{"raid5", "clean", "1", 4, 3, 3},
                       {"raid5", "clean", "2", 4, 4, 5},
                       {"raid6", "active", "2", 4, 3, 3},
                       {"raid6", "active", "3", 4, 4, 5},
                       {"raid1", "clean", "1", 2, 3, 3},
                       {"raid1", "clean", "2", 2, 4, 5},
                       {"raid10", "clean", "2", 4, 3, 3},
                       {"raid0", "broken", "", 2, 4, 5},
                       {"raid0", "clean", "", 2, 2, 2},
                       {"raid5", "inactive", "0", 4, 4, 5},
                       {"raid5", "", "0", 4, 0, 0},
                       {"raid1", "clean", "nonsense", 2, 0, 0},
                       {"raid5", "unheard of", "0", 4, 0, 0},
                       {"raid5", "read-auto", "0", 4, 2, 2},
                       {"raid5", "", "2", 4, 4, 5}};
    const std::string md = mirror();
    LiveRecords records(sysfs);
    for (const auto& one : cases) {
        sysfs.file(md + "/level", one.level);
        sysfs.file(md + "/array_state", one.state);
        sysfs.file(md + "/degraded", one.degraded);
        sysfs.file(md + "/raid_disks", std::to_string(one.disks));
        records.refresh();
        const SasLogicalDriveRecord& volume = *records.volumes().at(0);
        EXPECT_EQ(volume.status, one.status) << one.level << " " << one.state << " " << one.degraded;
        EXPECT_EQ(volume.redundancyState, one.redundancy) << one.level << " " << one.state << " " << one.degraded;
    }
}

TEST_F(LiveArrays, PartitionsCountForTheirDisksOnceAndForeignDisksNotAtAll)
{
    const std::string md = sysfs.addMd("md_home", "raid5", 3);
    for (const char* partition : {"sda1", "sda2"}) {
        sysfs.folder(disks[0] + "/block/sda/" + partition);
        sysfs.file(md + "/dev-" + partition + "/slot", "0\n");
        sysfs.file(md + "/dev-" + partition + "/state", "in_sync\n");
        sysfs.link(md + "/dev-" + partition + "/block", disks[0] + "/block/sda/" + partition);
    }
    sysfs.file(md + "/dev-nvme0n1/slot", "2\n");
    sysfs.file(md + "/dev-nvme0n1/state", "in_sync\n");
    sysfs.link(md + "/dev-nvme0n1/block", "devices/pci0000:00/0000:04:00.0/nvme/nvme0/nvme0n1");
    const std::string foreign = sysfs.addMd("md1", "raid1", 2);
    sysfs.file(foreign + "/dev-loop0/slot", "0\n");
    sysfs.link(foreign + "/dev-loop0/block", "devices/virtual/block/loop0");
    LiveRecords records(sysfs);
    ASSERT_EQ(records.volumes().size(), 1U) << "an array of other disks only is no volume of this adapter";
    EXPECT_EQ(textOf(records.volumes()[0]->osName), "/dev/md_home");
    EXPECT_EQ(+records.volumes()[0]->memberCount, 1U);
}

TEST_F(LiveArrays, AreFoundThroughTheDeviceMapper)
{
    const std::string md = sysfs.addMd("md0", "raid1", 2);
    for (const std::string n : {"0", "1"}) {
        const std::string ways = "devices/virtual/block/dm-" + n;
        sysfs.link(ways + "/slaves/sd" + (n == "0" ? "b" : "c"),
                   disks[n == "0" ? 1 : 2] + "/block/sd" + (n == "0" ? "b" : "c"));
        const std::string secret = "devices/virtual/block/dm-1" + n;
        sysfs.link(secret + "/slaves/dm-" + n, ways);
        sysfs.file(md + "/dev-dm-1" + n + "/slot", n);
        sysfs.file(md + "/dev-dm-1" + n + "/state", "in_sync\n");
        sysfs.link(md + "/dev-dm-1" + n + "/block", secret);
    }
    sysfs.link("devices/virtual/block/dm-9/slaves/dm-9", "devices/virtual/block/dm-9"); // a ring
    sysfs.file(md + "/dev-dm-9/slot", "2");
    sysfs.link(md + "/dev-dm-9/block", "devices/virtual/block/dm-9");
    LiveRecords records(sysfs);
    ASSERT_EQ(records.volumes().size(), 1U);
    EXPECT_EQ(+records.volumes()[0]->memberCount, 2U);
    EXPECT_EQ(usages(records), (std::vector<int>{4, 2, 2, 4}));
}

TEST_F(LiveArrays, MembersStandInTheOrderOfTheirPlaces)
{
    const std::string md = sysfs.addMd("md0", "raid5", 3);
    sysfs.addMdMember(md, disks[1], "sdb", "2", "in_sync");
    sysfs.addMdMember(md, disks[2], "sdc", "0", "in_sync");
    sysfs.addMdMember(md, disks[3], "sdd", "1", "in_sync");
    LiveRecords records(sysfs);
    EXPECT_EQ(fieldsOf(*records.volumes().at(0)),
              "logicalDriveNumber = 1000\nsize = 1024\nrebuildingDrive = 4294967295\nraidLevel = 5\nstatus = 2\n"
              "osName = /dev/md0\nredundancyState = 2\nmemberCount = 3\nmembers = 2 3 1\n");
}

TEST_F(LiveArrays, AJournalAndADriveThatIsNotYetInAreNoSpares)
{
    const std::string md = mirror();
    sysfs.addMdMember(md, disks[2], "sdc", "journal", "journal");
    sysfs.addMdMember(md, disks[3], "sdd", "none", "external_bbl");
    LiveRecords records(sysfs);
    EXPECT_EQ(+records.volumes().at(0)->spareCount, 0U);
    EXPECT_EQ(usages(records), (std::vector<int>{2, 2, 4, 4}));
}

TEST_F(LiveArrays, AContainerOfAMakersMetadataIsNoVolumeButTheArraysInItAre)
{
    const std::string container = sysfs.addMd("md127", "", 0, 0);
    sysfs.file(container + "/metadata_version", "external:imsm\n");
    sysfs.file(container + "/array_state", "inactive\n");
    const std::string md = sysfs.addMd("md126", "raid1", 2);
    sysfs.file(md + "/metadata_version", "external:/md127/0\n");
    for (const std::string& folder : {container, md}) {
        const bool inside = folder == md;
        sysfs.addMdMember(folder, disks[0], "sda", inside ? "0" : "none", inside ? "in_sync" : "spare");
        sysfs.addMdMember(folder, disks[1], "sdb", inside ? "1" : "none", inside ? "in_sync" : "spare");
    }
    LiveRecords records(sysfs);
    ASSERT_EQ(records.volumes().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.volumes()[0]),
              "logicalDriveNumber = 1126\nsize = 1024\nrebuildingDrive = 4294967295\nraidLevel = 3\nstatus = 2\n"
              "osName = /dev/md126\nredundancyState = 2\nmemberCount = 2\nmembers = 0 1\n");
    sysfs.file(md + "/metadata_version", "external:-md127/0\n");
    records.refresh();
    EXPECT_EQ(records.volumes().size(), 1U) << "an array that is being taken apart is still one";
}

TEST_F(LiveArrays, AMirrorWhoseCopiesAreBroughtInLineIsNotYetRedundant)
{
    const std::string md = mirror();
    sysfs.file(md + "/sync_action", "resync\n");
    LiveRecords records(sysfs);
    EXPECT_EQ(records.volumes().at(0)->status, 2);
    EXPECT_EQ(records.volumes()[0]->redundancyState, 4);
    EXPECT_EQ(+records.volumes()[0]->rebuildingDrive, 0xFFFFFFFFU) << "no single drive is";
    sysfs.file(md + "/sync_action", "check\n");
    records.refresh();
    EXPECT_EQ(records.volumes()[0]->redundancyState, 2);
}

TEST_F(LiveArrays, ARebuildOnAForeignDriveIsARebuildWithoutAName)
{
    const std::string md = sysfs.addMd("md0", "raid1", 2);
    sysfs.addMdMember(md, disks[0], "sda", "0", "in_sync");
    sysfs.file(md + "/dev-nvme0n1/slot", "1\n");
    sysfs.file(md + "/dev-nvme0n1/state", "spare\n");
    sysfs.file(md + "/degraded", "1\n");
    sysfs.file(md + "/sync_action", "recover\n");
    LiveRecords records(sysfs);
    EXPECT_EQ(fieldsOf(*records.volumes().at(0)),
              "logicalDriveNumber = 1000\nsize = 1024\nrebuildingDrive = 4294967295\nraidLevel = 3\nstatus = 3\n"
              "osName = /dev/md0\nredundancyState = 4\nmemberCount = 1\n");
}

TEST_F(LiveArrays, AStripeThatLostADriveHasFailed)
{
    const std::string md = mirror();
    LiveRecords records(sysfs);
    for (const char* level : {"raid0\n", "linear\n"}) {
        sysfs.file(md + "/level", level);
        sysfs.file(md + "/dev-sdb/state", "in_sync\n");
        records.refresh();
        EXPECT_EQ(records.volumes().at(0)->status, 2) << level;
        sysfs.file(md + "/dev-sdb/state", "faulty,in_sync\n");
        records.refresh();
        EXPECT_EQ(records.volumes().at(0)->status, 4) << level;
        EXPECT_EQ(records.volumes().at(0)->redundancyState, 5) << level;
    }
}

TEST_F(LiveArrays, AreFoundInATreeWithTheClassOfBlockDevicesOnlyAndByTheNamesOfTheirMembers)
{
    const std::string md = mirror();
    for (const char* name : {"sda", "sdb"})
        sysfs.remove(md + "/dev-" + name + "/block");
    for (const char* name : {"sda", "sdb", "md7"})
        sysfs.link(std::string("class/block/") + name, std::string(name) == "md7"
                                                           ? md.substr(0, md.rfind('/'))
                                                           : disks[name[2] == 'a' ? 0 : 1] + "/block/" + name);
    sysfs.remove("block");
    LiveRecords records(sysfs);
    ASSERT_EQ(records.volumes().size(), 1U);
    EXPECT_EQ(textOf(records.volumes()[0]->osName), "/dev/md7");
    EXPECT_EQ(+records.volumes()[0]->memberCount, 2U);
}

TEST_F(LiveArrays, MoreMembersThanARecordHoldsAreCutInBothItsCountAndItsList)
{
    const std::string md = sysfs.addMd("md0", "raid6", 20);
    for (unsigned i = 10; i < 30; ++i) {
        const std::string n = std::to_string(i);
        sysfs.addPort(host, "port-0:" + n, {i});
        FakeDisk disk;
        disk.address = "0:0:" + n + ":0";
        disk.block = "sda" + n;
        disk.wwid = "naa.5000a720012400" + n;
        disk.parent = "port-0:" + n;
        disk.endDevice = "end_device-0:" + n;
        sysfs.addMdMember(md, sysfs.addDisk(host, disk), disk.block, std::to_string(i - 10), "in_sync");
    }
    LiveRecords records(sysfs);
    EXPECT_EQ(+records.volumes().at(0)->memberCount, 16U);
    EXPECT_EQ(+records.volumes().at(0)->members[15], 25U);
    EXPECT_EQ(+records.volumes().at(0)->spareCount, 0U);
}

TEST_F(LiveArrays, AFirmwareVolumeOfTheRaidClass)
{
    FakeDisk volume;
    volume.address = "0:1:3:0";
    volume.block = "sdv";
    volume.vendor = "ACME";
    volume.model = "Logical Volume";
    volume.wwid = "naa.600508e0000000000000000000000001";
    const std::string device = sysfs.addDisk(host, volume);
    const std::string raid = device + "/raid_devices/0:1:3:0/";
    sysfs.file(raid + "level", "raid10\n");
    struct {
        const char* state;
        int status, redundancy;
    } const cases[] = {{"active", 2, 2},  {"degraded", 3, 3}, {"resyncing", 3, 4},
                       {"offline", 4, 5}, {"unknown", 0, 0},  {"(null)", 0, 0}};
    for (const auto& one : cases) {
        sysfs.file(raid + "state", std::string(one.state) + "\n");
        LiveRecords records(sysfs);
        ASSERT_EQ(records.volumes().size(), 1U);
        std::string expected = "logicalDriveNumber = 3\nsize = 572325\nrebuildingDrive = 4294967295\nraidLevel = 4\n";
        if (one.status) expected += "status = " + std::to_string(one.status) + "\n";
        expected += "osName = /dev/sdv\n";
        if (one.redundancy) expected += "redundancyState = " + std::to_string(one.redundancy) + "\n";
        EXPECT_EQ(fieldsOf(*records.volumes()[0]), expected) << one.state;
        EXPECT_EQ(records.drives().size(), 4U) << "a volume is no drive";
    }
}

TEST_F(LiveArrays, AFirmwareVolumeIsNoDriveWhileTheKernelMakesOrRemovesIt)
{
    FakeDisk volume;
    volume.address = "0:1:3:0";
    volume.block = "sdv";
    volume.wwid = "naa.600508e0000000000000000000000001";
    sysfs.addDisk(host, volume); // its RAID class is not there yet, or no longer
    const LiveRecords records(sysfs);
    EXPECT_EQ(records.drives().size(), 4U);
    ASSERT_EQ(records.volumes().size(), 1U);
    EXPECT_EQ(records.volumes()[0]->status, 0);
}

TEST_F(LiveArrays, ADegradedFirmwareVolumeRebuildsWhileItsProgressMoves)
{
    FakeDisk volume;
    volume.address = "0:1:0:0";
    volume.block = "sdv";
    volume.wwid = "naa.600508e0000000000000000000000001";
    const std::string raid = sysfs.addDisk(host, volume) + "/raid_devices/0:1:0:0/";
    sysfs.file(raid + "level", "raid5\n");
    sysfs.file(raid + "state", "degraded\n");
    const std::pair<const char*, int> cases[] = {{"0", 3},     {"37", 4},    {"3700", 4},
                                                 {"10000", 3}, {"100", 3},   {"18446744073709551615", 3},
                                                 {"", 3},      {"(null)", 3}};
    for (const auto& [progress, redundancy] : cases) {
        sysfs.file(raid + "resync", progress);
        const LiveRecords records(sysfs);
        EXPECT_EQ(records.volumes().at(0)->status, 3) << progress;
        EXPECT_EQ(records.volumes().at(0)->redundancyState, redundancy) << progress;
    }
}

TEST(RaidLevel, HasACodeWhereTheRecordsKnowOne)
{
    const std::pair<const char*, int> cases[] = {{"raid0", 2},  {"raid1", 3},          {"raid10", 4}, {"raid5", 5},
                                                 {"RAID-0", 2}, {"RAID-1(1+0)", 3},    {"RAID-5", 5}, {"RAID-5+1", 6},
                                                 {"raid6", 0},  {"linear", 0},         {"jbod", 0},   {"(null)", 0},
                                                 {"RAID-6", 0}, {"RAID 1(Triple)", 3}, {"", 0},       {"raid50", 0}};
    for (const auto& [text, code] : cases)
        EXPECT_EQ(raidLevelCode(text), code) << text;
}

} // namespace
} // namespace KDV
