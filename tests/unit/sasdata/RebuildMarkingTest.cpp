#include "sasdata/RebuildMarking.h"

#include "machine/TestMachine.h"
#include "sasdata/SasPhysicalDrive.h"

#include <deque>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

constexpr std::uint8_t rebuildingState = 4;

class RebuildMarking : public testing::Test {
protected:
    SasHba* addHba(std::uint32_t number)
    {
        SasHba& hba = hbas.emplace_back(logger, &machine.addHba(number));
        for (std::uint32_t drive = 0; drive < 3; ++drive) {
            drives.emplace_back(logger, &machine.addDrive(*hba.record, drive, memberUsage));
            hba.physicalDrives.push_back(&drives.back());
        }
        return &hba;
    }

    SasLogicalDriveRecord& addVolume(SasHba* hba, std::uint8_t state, std::uint32_t rebuildingDrive)
    {
        SasLogicalDriveRecord& record = machine.addVolume(*hba->record, 1, {0, 1, 2});
        record.redundancyState = state;
        record.rebuildingDrive = rebuildingDrive;
        return record;
    }

    std::vector<bool> marks() const
    {
        std::vector<bool> all;
        for (const SasPhysicalDrive& drive : drives)
            all.push_back(drive.rebuilding);
        return all;
    }

    Logger logger{"test"};
    TestMachine machine;
    std::deque<SasHba> hbas;
    std::deque<SasPhysicalDrive> drives;
};

TEST_F(RebuildMarking, MarksTheDriveThatARebuildingLogicalDriveNames)
{
    SasHba* hba = addHba(0);
    SasHba* other = addHba(1);
    addVolume(hba, rebuildingState, 1);
    markRebuildingDrives({hba, other});
    EXPECT_EQ(marks(), (std::vector<bool>{false, true, false, false, false, false}));
}

TEST_F(RebuildMarking, MarksNothingForALogicalDriveThatNamesNoRebuildingDrive)
{
    SasHba* hba = addHba(0);
    addVolume(hba, rebuildingState, 0xFFFFFFFF);
    addVolume(hba, rebuildingState, 77);
    markRebuildingDrives({hba});
    EXPECT_EQ(marks(), std::vector<bool>(3, false));
}

TEST_F(RebuildMarking, MarksNothingForALogicalDriveInAnotherState)
{
    SasHba* hba = addHba(0);
    for (int state = 0; state < 256; ++state)
        if (state != rebuildingState) addVolume(hba, static_cast<std::uint8_t>(state), 1);
    markRebuildingDrives({hba});
    EXPECT_EQ(marks(), std::vector<bool>(3, false));
}

TEST_F(RebuildMarking, ClearsTheMarksOfBefore)
{
    SasHba* hba = addHba(0);
    SasHba* other = addHba(1);
    SasLogicalDriveRecord& volume = addVolume(other, rebuildingState, 2);
    drives[0].rebuilding = true;
    markRebuildingDrives({hba, other});
    EXPECT_EQ(marks(), (std::vector<bool>{false, false, false, false, false, true}));
    volume.redundancyState = 2;
    markRebuildingDrives({hba, other});
    EXPECT_EQ(marks(), std::vector<bool>(6, false));
}

} // namespace
} // namespace KDV::Test
