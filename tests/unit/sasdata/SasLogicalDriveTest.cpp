#include "sasdata/SasLogicalDrive.h"

#include "harness/LogCapture.h"
#include "machine/TestMachine.h"

#include <memory>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

static_assert(!std::is_copy_constructible_v<SasLogicalDrive> && !std::is_polymorphic_v<SasLogicalDrive>);

class SasLogicalDriveTest : public testing::Test {
protected:
    Logger logger{"KDVSASHBA:1"};
    TestMachine machine;
    SasHbaRecord& hba = machine.addHba(0);
};

TEST_F(SasLogicalDriveTest, RemembersNumberAndRecord)
{
    SasLogicalDriveRecord& record = machine.addVolume(hba, 0xFFFFFFFF, {1});
    const SasLogicalDrive drive(logger, &record);
    record.logicalDriveNumber = 3;
    EXPECT_EQ(drive.logicalDriveNumber, 0xFFFFFFFF);
    EXPECT_EQ(drive.record, &record);
    EXPECT_EQ(drive.storageVolume, nullptr);
}

TEST_F(SasLogicalDriveTest, HasNoRedundancySetWithoutSpares)
{
    const SasLogicalDrive drive(logger, &machine.addVolume(hba, 1, {1, 2}));
    EXPECT_EQ(std::uint32_t(drive.record->spareCount), 0u);
    EXPECT_EQ(drive.redundancySet, nullptr);
}

TEST_F(SasLogicalDriveTest, LogsItsLifeUnderItsSource)
{
    LogCapture log;
    std::make_unique<SasLogicalDrive>(logger, &machine.addVolume(hba, 1, {}));
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"SASLogicalDrives cxtor()", "SASLogicalDrives dxtor()"}));
    EXPECT_EQ(log.sources().front(), "KDVSASHBA:1:SASLogicalDrives");
}

TEST_F(SasLogicalDriveTest, ReadsNoFurtherThanItsListsWhateverTheCountSays)
{
    // Records of their own size on the heap, so that a read past them is seen by the address sanitizer.
    const auto record = std::make_unique<SasLogicalDriveRecord>();
    *record = machine.addVolume(hba, 1, {});
    std::memset(record->members, 0x11, sizeof record->members);
    std::memset(record->spares, 0x22, sizeof record->spares);
    record->memberCount = 0xFFFFFFFF;
    record->spareCount = 17;
    const SasLogicalDrive drive(logger, record.get());
    EXPECT_TRUE(drive.hasMember(0x11111111));
    EXPECT_FALSE(drive.hasMember(17)); // the spare count, which follows the members
    EXPECT_FALSE(drive.hasMember(0x22222222));
    EXPECT_TRUE(drive.hasSpare(0x22222222));
    EXPECT_FALSE(drive.hasSpare(0x11111111));
    record->spareCount = 0xFFFFFFFF;
    EXPECT_FALSE(drive.hasSpare(0x11111111));
}

TEST_F(SasLogicalDriveTest, ReadsAllSixteenMembersAndSpares)
{
    std::vector<std::uint32_t> members, spares;
    for (std::uint32_t i = 0; i < 16; ++i) {
        members.push_back(100 + i);
        spares.push_back(200 + i);
    }
    const SasLogicalDrive drive(logger, &machine.addVolume(hba, 1, members, spares));
    EXPECT_TRUE(drive.hasMember(100) && drive.hasMember(115));
    EXPECT_TRUE(drive.hasSpare(200) && drive.hasSpare(215));
}

TEST_F(SasLogicalDriveTest, FollowsTheRecordsCounts)
{
    SasLogicalDriveRecord& record = machine.addVolume(hba, 1, {1, 2}, {3, 4});
    const SasLogicalDrive drive(logger, &record);
    record.memberCount = 1;
    record.spareCount = 0;
    EXPECT_TRUE(drive.hasMember(1));
    EXPECT_FALSE(drive.hasMember(2));
    EXPECT_FALSE(drive.hasSpare(3));
}

} // namespace
} // namespace KDV::Test
