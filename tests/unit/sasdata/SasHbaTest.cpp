#include "sasdata/SasHba.h"

#include "harness/LogCapture.h"
#include "machine/TestMachine.h"
#include "sasdata/SasLogicalDrive.h"
#include "sasdata/SasPhysicalDrive.h"
#include "sasdata/SasStorageBox.h"

#include <deque>
#include <memory>
#include <random>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

static_assert(!std::is_copy_constructible_v<SasHba> && !std::is_copy_assignable_v<SasHba>);
static_assert(!std::is_polymorphic_v<SasHba>);

class SasHbaTest : public testing::Test {
protected:
    SasLogicalDrive& addVolume(std::uint32_t number, const std::vector<std::uint32_t>& members,
                               const std::vector<std::uint32_t>& spares = {})
    {
        volumes.emplace_back(logger, &machine.addVolume(record, number, members, spares));
        hba.logicalDrives.push_back(&volumes.back());
        return volumes.back();
    }

    SasPhysicalDrive& addDrive(std::uint32_t number)
    {
        drives.emplace_back(logger, &machine.addDrive(record, number, memberUsage));
        hba.physicalDrives.push_back(&drives.back());
        return drives.back();
    }

    SasStorageBox& addBox(std::uint8_t number)
    {
        boxes.emplace_back(logger, &machine.addBox(record, number));
        hba.storageBoxes.push_back(&boxes.back());
        return boxes.back();
    }

    Logger logger{"KDVSASHBA:1"};
    TestMachine machine;
    SasHbaRecord& record = machine.addHba(0xFFFFFFFE);
    SasHba hba{logger, &record};
    std::deque<SasLogicalDrive> volumes;
    std::deque<SasPhysicalDrive> drives;
    std::deque<SasStorageBox> boxes;
};

TEST_F(SasHbaTest, RemembersNumberAndRecordAndStartsEmpty)
{
    EXPECT_EQ(hba.hbaNumber, 0xFFFFFFFE);
    EXPECT_EQ(hba.record, &record);
    for (const CmpiManagedInstance* instance : {hba.arraySystem, hba.arrayController, hba.scsiProtocolController,
                                                hba.primordialPool, hba.primordialPoolNoRaid, hba.storagePool})
        EXPECT_EQ(instance, nullptr);
    EXPECT_TRUE(hba.logicalDrives.empty());
    EXPECT_TRUE(hba.storageBoxes.empty());
    EXPECT_TRUE(hba.physicalDrives.empty());
}

TEST_F(SasHbaTest, KeepsItsNumberWhenTheRecordsChanges)
{
    record.hbaNumber = 5;
    EXPECT_EQ(hba.hbaNumber, 0xFFFFFFFE);
}

TEST_F(SasHbaTest, LogsItsLifeUnderItsSource)
{
    LogCapture log;
    std::make_unique<SasHba>(logger, &record);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"SASHBA cxtor()", "SASHBA dxtor()"}));
    EXPECT_EQ(log.sources().front(), "KDVSASHBA:1:SASHBA");
    EXPECT_EQ(logger.source(), "KDVSASHBA:1");
}

TEST_F(SasHbaTest, FindsTheFirstPhysicalDriveOfANumberAndNullForNone)
{
    SasPhysicalDrive& first = addDrive(7);
    SasPhysicalDrive& other = addDrive(8);
    addDrive(7);
    EXPECT_EQ(hba.physicalDriveByNumber(7), &first);
    EXPECT_EQ(hba.physicalDriveByNumber(8), &other);
    EXPECT_EQ(hba.physicalDriveByNumber(9), nullptr);
    hba.physicalDrives.clear();
    EXPECT_EQ(hba.physicalDriveByNumber(7), nullptr);
}

TEST_F(SasHbaTest, FindsTheFirstStorageBoxOfANumber)
{
    SasStorageBox& first = addBox(255);
    addBox(255);
    SasStorageBox& other = addBox(0);
    EXPECT_EQ(hba.storageBoxByNumber(255), &first);
    EXPECT_EQ(hba.storageBoxByNumber(0), &other);
}

TEST_F(SasHbaTest, GivesNullForABoxNumberThatNoBoxHas)
{
    addBox(1);
    EXPECT_EQ(hba.storageBoxByNumber(2), nullptr);
    EXPECT_EQ(hba.storageBoxByNumber(257), nullptr); // not cut to a byte
}

TEST_F(SasHbaTest, FindsTheBoxThatADrivesIdentifierNames)
{
    addBox(1);
    SasStorageBox& second = addBox(2);
    SasPhysicalDrive& drive = addDrive(7);
    drive.record->boxIdentifier = 0x10000002;
    EXPECT_EQ(hba.storageBoxByNumber(drive.record->boxIdentifier - boxIdentifierBase), &second);
    drive.record->boxIdentifier = 2; // without the base: no box
    EXPECT_EQ(hba.storageBoxByNumber(drive.record->boxIdentifier - boxIdentifierBase), nullptr);
}

TEST_F(SasHbaTest, FindsTheFirstLogicalDriveWithAMember)
{
    SasLogicalDrive& first = addVolume(1, {3, 4});
    SasLogicalDrive& second = addVolume(2, {4, 5}, {6});
    EXPECT_EQ(hba.logicalDriveByMember(4), &first);
    EXPECT_EQ(hba.logicalDriveByMember(5), &second);
    EXPECT_EQ(hba.logicalDriveByMember(6), nullptr); // a spare is no member
    EXPECT_EQ(hba.logicalDriveByMember(0), nullptr); // nor is what lies behind the count
}

TEST_F(SasHbaTest, FindsTheFirstLogicalDriveWithASpare)
{
    addVolume(1, {3, 4});
    SasLogicalDrive& second = addVolume(2, {5}, {6, 7});
    addVolume(3, {8}, {7});
    EXPECT_EQ(hba.logicalDriveBySpare(7), &second);
    EXPECT_EQ(hba.logicalDriveBySpare(5), nullptr);
    EXPECT_EQ(hba.logicalDriveBySpare(3), nullptr);
}

// Random lists against a plain look at the records.
TEST_F(SasHbaTest, FindsWhatAPlainWalkOverTheRecordsFinds)
{
    std::mt19937 random(4711);
    const auto numbers = [&] {
        std::vector<std::uint32_t> list(random() % 17);
        for (std::uint32_t& number : list)
            number = static_cast<std::uint32_t>(random() % 40);
        return list;
    };
    std::vector<std::pair<std::vector<std::uint32_t>, std::vector<std::uint32_t>>> lists;
    for (std::uint32_t number = 0; number < 8; ++number) {
        lists.emplace_back(numbers(), numbers());
        addVolume(number, lists.back().first, lists.back().second);
    }
    const auto expected = [&](std::uint32_t drive, auto list) -> SasLogicalDrive* {
        for (std::size_t i = 0; i < lists.size(); ++i)
            for (const std::uint32_t number : lists[i].*list)
                if (number == drive) return hba.logicalDrives[i];
        return nullptr;
    };
    using Lists = decltype(lists)::value_type;
    for (std::uint32_t drive = 0; drive < 45; ++drive) {
        EXPECT_EQ(hba.logicalDriveByMember(drive), expected(drive, &Lists::first)) << drive;
        EXPECT_EQ(hba.logicalDriveBySpare(drive), expected(drive, &Lists::second)) << drive;
    }
}

} // namespace
} // namespace KDV::Test
