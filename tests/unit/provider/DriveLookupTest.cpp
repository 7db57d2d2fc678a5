#include "provider/DriveLookup.h"

#include "machine/TestMachine.h"
#include "provider/DeviceObjects.h"

#include <random>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

// An HBA's device objects, made from its records in list order.
struct Devices {
    explicit Devices(SasHbaRecord& record) : hba(logger, &record)
    {
        for (auto* drive = record.logicalDrives.get(); drive; drive = drive->next.get())
            hba.logicalDrives.push_back(&objects.logicalDrives.emplace_back(logger, drive));
        for (auto* box = record.storageBoxes.get(); box; box = box->next.get())
            hba.storageBoxes.push_back(&objects.storageBoxes.emplace_back(logger, box));
    }

    Logger logger{"test"};
    DeviceObjects objects;
    SasHba hba;
};

TEST(DriveLookup, FindsNothingInAnHbaWithoutDrivesAndBoxes)
{
    TestMachine machine;
    const Devices devices(machine.addHba(1));
    const DriveLookup lookup(devices.hba);
    EXPECT_EQ(lookup.byMember(0), nullptr);
    EXPECT_EQ(lookup.bySpare(0), nullptr);
    EXPECT_EQ(lookup.box(0), nullptr);
}

TEST(DriveLookup, GivesTheFirstLogicalDriveThatNamesADrive)
{
    TestMachine machine;
    SasHbaRecord& hba = machine.addHba(1);
    machine.addVolume(hba, 0, {1, 2}, {9});
    machine.addVolume(hba, 1, {2, 3}, {9, 10});
    const Devices devices(hba);
    const DriveLookup lookup(devices.hba);
    EXPECT_EQ(lookup.byMember(2), devices.hba.logicalDrives[0]);
    EXPECT_EQ(lookup.byMember(3), devices.hba.logicalDrives[1]);
    EXPECT_EQ(lookup.bySpare(9), devices.hba.logicalDrives[0]);
    EXPECT_EQ(lookup.bySpare(10), devices.hba.logicalDrives[1]);
    EXPECT_EQ(lookup.byMember(9), nullptr);
}

TEST(DriveLookup, DoesNotBelieveACountBeyondTheList)
{
    TestMachine machine;
    SasHbaRecord& hba = machine.addHba(1);
    SasLogicalDriveRecord& volume = machine.addVolume(hba, 0, {1});
    volume.memberCount = 0xFFFFFFFF;
    volume.spareCount = 17; // read as a seventeenth member it would be drive 17, and beyond the record lies more
    const Devices devices(hba);
    const DriveLookup lookup(devices.hba);
    EXPECT_EQ(lookup.byMember(1), devices.hba.logicalDrives[0]);
    EXPECT_EQ(lookup.byMember(0), devices.hba.logicalDrives[0]); // the unused entries of the list
    EXPECT_EQ(lookup.byMember(17), nullptr);
    EXPECT_EQ(lookup.bySpare(0), devices.hba.logicalDrives[0]);
}

TEST(DriveLookup, GivesTheFirstOfTwoBoxesWithOneNumber)
{
    TestMachine machine;
    SasHbaRecord& hba = machine.addHba(1);
    machine.addBox(hba, 2);
    machine.addBox(hba, 2);
    machine.addBox(hba, 255);
    const Devices devices(hba);
    const DriveLookup lookup(devices.hba);
    EXPECT_EQ(lookup.box(2), devices.hba.storageBoxes[0]);
    EXPECT_EQ(lookup.box(255), devices.hba.storageBoxes[2]);
    EXPECT_EQ(lookup.box(256), nullptr);
}

TEST(DriveLookup, AgreesWithTheScansOverAnyRecords)
{
    std::mt19937 random(20240229);
    const auto below = [&](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
    for (int round = 0; round < 200; ++round) {
        TestMachine machine;
        SasHbaRecord& hba = machine.addHba(1);
        for (std::uint32_t i = 0; i < 6; ++i) {
            std::vector<std::uint32_t> members, spares;
            for (std::uint32_t n = below(17); n > 0; --n)
                members.push_back(below(40));
            for (std::uint32_t n = below(17); n > 0; --n)
                spares.push_back(below(40));
            SasLogicalDriveRecord& volume = machine.addVolume(hba, i, members, spares);
            if (below(3) == 0) volume.memberCount = below(20);
            if (below(3) == 0) volume.spareCount = below(20);
            machine.addBox(hba, static_cast<std::uint8_t>(below(4)));
        }
        const Devices devices(hba);
        const DriveLookup lookup(devices.hba);
        for (std::uint32_t number = 0; number < 40; ++number) {
            EXPECT_EQ(lookup.byMember(number), devices.hba.logicalDriveByMember(number));
            EXPECT_EQ(lookup.bySpare(number), devices.hba.logicalDriveBySpare(number));
            EXPECT_EQ(lookup.box(number), devices.hba.storageBoxByNumber(number));
        }
    }
}

} // namespace
} // namespace KDV::Test
