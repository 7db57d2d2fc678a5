#include "sasdata/SasPhysicalDrive.h"

#include "harness/LogCapture.h"
#include "machine/TestMachine.h"

#include <memory>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

static_assert(!std::is_copy_constructible_v<SasPhysicalDrive> && !std::is_polymorphic_v<SasPhysicalDrive>);

class SasPhysicalDriveTest : public testing::Test {
protected:
    Logger logger{"KDVSASHBA:1"};
    TestMachine machine;
    SasHbaRecord& hba = machine.addHba(0);
};

TEST_F(SasPhysicalDriveTest, RemembersNumberAndRecordAndIsNotRebuilding)
{
    SasPhysicalDriveRecord& record = machine.addDrive(hba, 0xFFFFFFFF, memberUsage);
    const SasPhysicalDrive drive(logger, &record);
    record.driveNumber = 3;
    EXPECT_EQ(drive.driveNumber, 0xFFFFFFFF);
    EXPECT_EQ(drive.record, &record);
    EXPECT_EQ(drive.diskDrive, nullptr);
    EXPECT_FALSE(drive.rebuilding);
}

TEST_F(SasPhysicalDriveTest, IsTrackedExactlyWhenItIsNotConfiguredForRaid)
{
    for (int usage = 0; usage < 256; ++usage) {
        const SasPhysicalDrive drive(logger, &machine.addDrive(hba, 1, static_cast<std::uint8_t>(usage)));
        EXPECT_EQ(drive.hotPlugTracked, usage == 4) << usage;
        EXPECT_TRUE(drive.trackedInstances.empty());
    }
}

TEST_F(SasPhysicalDriveTest, StaysTrackedWhenItsUsageChanges)
{
    SasPhysicalDriveRecord& record = machine.addDrive(hba, 1, unassignedUsage);
    const SasPhysicalDrive drive(logger, &record);
    record.usage = memberUsage;
    EXPECT_TRUE(drive.hotPlugTracked);
}

TEST_F(SasPhysicalDriveTest, LogsItsLifeUnderItsOddlySpeltSource)
{
    LogCapture log;
    std::make_unique<SasPhysicalDrive>(logger, &machine.addDrive(hba, 1, memberUsage));
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"KDV_SASPhyscialDisk cxtor()", "KDV_SASPhyscialDisk dxtor()"}));
    EXPECT_EQ(log.sources().front(), "KDVSASHBA:1:KDV_SASPhyscialDisk");
}

} // namespace
} // namespace KDV::Test
