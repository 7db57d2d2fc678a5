// The instances of logical drives and extents: what is easily got wrong, each by a sentence.
#include "InstanceFixture.h"
#include "instances/KDV_SASStorageExtent.h"
#include "instances/KDV_SASStorageRedundancySet.h"
#include "instances/KDV_SASStorageSetting.h"
#include "instances/KDV_SASStorageVolume.h"

namespace KDV::Test {
namespace {

class VolumeInstances : public InstanceFixture {
protected:
    VolumeInstances()
    {
        hba->modelCode = 2;
        volume->logicalDriveNumber = 4;
        volume->size = 1000;
        put(volume->osName, "/dev/sda");
    }

    Host::CollectedInstance volumeOfLevel(int level)
    {
        volume->raidLevel = static_cast<std::uint8_t>(level);
        return publish<KDV_SASStorageVolume>(hba, volume);
    }
};

TEST_F(VolumeInstances, HaveNoRedundancyAtRaid0)
{
    const auto instance = volumeOfLevel(2);
    EXPECT_EQ(instance.value("DataRedundancy"), "1");
    EXPECT_EQ(instance.value("NoSinglePointOfFailure"), "false");
    EXPECT_EQ(instance.value("PackageRedundancy"), "0");
    EXPECT_EQ(instance.value("FaultTolerance"), "1");
    EXPECT_EQ(instance.value("ElementName"), "\"Logical Volume 4 (RAID 0)\"");
}

TEST_F(VolumeInstances, HaveARedundancyButNoFaultToleranceAtCode7)
{
    const auto instance = volumeOfLevel(7);
    EXPECT_EQ(instance.value("ElementName"), "\"Logical Volume 4 (No RAID)\"");
    EXPECT_EQ(instance.value("DataRedundancy"), "1");
    EXPECT_EQ(instance.value("NoSinglePointOfFailure"), "false");
    EXPECT_EQ(instance.value("FaultTolerance"), "absent");
}

TEST_F(VolumeInstances, SayNothingOfRedundancyAtUnknownLevels)
{
    for (const int level : {0, 1, 8, 9, 31, 32, 34, 35, 37, 39, 66, 255}) {
        const auto instance = volumeOfLevel(level);
        for (const char* name : {"DataRedundancy", "NoSinglePointOfFailure", "PackageRedundancy", "FaultTolerance"})
            EXPECT_EQ(instance.value(name), "absent") << name << " at " << level;
        EXPECT_EQ(instance.value("DeltaReservation"), "0");
    }
}

TEST_F(VolumeInstances, CountBlocksInThirtyTwoBits)
{
    const std::pair<std::uint32_t, const char*> sizes[] = {
        {1000, "1048576"},         {511, "0"}, {2097152, "0"}, {2097151, "4293918720"}, {2097152 + 512, "1048576"},
        {0xFFFFFFFF, "4293918720"}};
    for (const auto& [size, blocks] : sizes) {
        volume->size = size;
        const auto instance = volumeOfLevel(5);
        EXPECT_EQ(instance.value("NumberOfBlocks"), blocks) << size;
        EXPECT_EQ(instance.value("ConsumableBlocks"), blocks) << size;
    }
}

TEST_F(VolumeInstances, RebuildAsAVolumeWithoutARedundancyStatus)
{
    volume->redundancyState = 4;
    EXPECT_EQ(volumeOfLevel(5).value("ExtentStatus"), "{11}");
    EXPECT_EQ(publish<KDV_SASStorageRedundancySet>(volume).value("RedundancyStatus"), "absent");
}

TEST_F(VolumeInstances, LeaveOutTheSizesOfADriveThatHasNone)
{
    drive->blockSize = drive->blockCount = 0;
    const auto instance = publish<KDV_SASStorageExtent>(hba, given.driveObject);
    for (const char* name : {"BlockSize", "ConsumableBlocks", "NumberOfBlocks"})
        EXPECT_EQ(instance.value(name), "absent") << name;
}

TEST_F(VolumeInstances, SpellTheDeviceNameDifferentlyInVolumeAndExtent)
{
    put(drive->osName, "/dev/sdb");
    const auto ofVolume = volumeOfLevel(5);
    const auto ofExtent = publish<KDV_SASStorageExtent>(hba, given.driveObject);
    ASSERT_NE(ofVolume.find("OSName"), nullptr);
    EXPECT_EQ(ofVolume.find("OSName")->name, "OSName");
    ASSERT_NE(ofExtent.find("OsName"), nullptr);
    EXPECT_EQ(ofExtent.find("OsName")->name, "OsName");
}

TEST_F(VolumeInstances, KeepTheNumberForAssociationsBesideTheOneInTheirKeys)
{
    const KDV_SASStorageVolume object(logger, "root/vnr", hba, volume);
    volume->logicalDriveNumber = 5;
    volume->size = 77;
    EXPECT_EQ(object.logicalDriveNumber(), 4u);
    EXPECT_EQ(object.getPath().keyText("DeviceID"), "StorageVolume:5");
    EXPECT_EQ(object.sizeMiB(), 77u);
}

TEST_F(VolumeInstances, ReadTheRecordThroughTheDeviceObjectAtEachCall)
{
    const KDV_SASStorageExtent extent(logger, "root/vnr", hba, given.driveObject);
    TestMachine machine;
    SasPhysicalDriveRecord& other = machine.addDrive(machine.addHba(1), 1, memberUsage);
    put(other.serialNumber, "other");
    given.driveObject->record = &other;
    EXPECT_EQ(extent.getPath().keyText("DeviceID"), "other");
}

} // namespace
} // namespace KDV::Test
