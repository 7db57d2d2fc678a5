// What happens to records when drives go and come.
#include "Playground.h"

#include <cstring>
#include <string>
#include <vector>

namespace KDV {
namespace {

using Numbers = std::vector<std::uint32_t>;

std::string machine(const std::string& timeline)
{
    return oneHba(
        R"("physicalDrives": [{"driveNumber": 1, "serialNumber": "S1"}, {"driveNumber": 2, "serialNumber": "S2"},
        {"driveNumber": 3, "serialNumber": "S3"}])",
        "\"timeline\": [" + timeline + "]");
}

TEST(PulledDrive, LeavesTheListAndStaysReadableAsItWasLast)
{
    Playground play(machine(R"({"atPass": 1, "hba": 0, "physicalDrive": 2, "set": {"status": "failed"}},
        {"atPass": 2, "hba": 0, "pull": 2},
        {"atPass": 3, "hba": 0, "physicalDrive": 2, "set": {"status": "ok"}})"));
    const SasPhysicalDriveRecord* pulled = play.drives().at(1);
    play.pass(3);
    EXPECT_EQ(play.driveNumbers(), (Numbers{1, 3}));
    EXPECT_EQ(textOf(pulled->serialNumber), "S2");
    EXPECT_EQ(std::uint32_t{pulled->driveNumber}, 2U);
    EXPECT_EQ(pulled->status, 4) << "a change does not reach a drive that is gone";
    EXPECT_EQ(pulled->next.get(), nullptr);
}

TEST(PulledDrive, MayBeTheFirstTheLastOrTheOnlyOne)
{
    Playground play(machine(R"({"atPass": 1, "hba": 0, "pull": 1}, {"atPass": 2, "hba": 0, "pull": 3},
        {"atPass": 3, "hba": 0, "pull": 2}, {"atPass": 4, "hba": 0, "pull": 2},
        {"atPass": 5, "hba": 0, "insert": 3})"));
    play.pass();
    EXPECT_EQ(play.driveNumbers(), (Numbers{2, 3}));
    play.pass();
    EXPECT_EQ(play.driveNumbers(), (Numbers{2}));
    play.pass();
    EXPECT_EQ(play.driveNumbers(), (Numbers{}));
    EXPECT_FALSE(play.hba()->physicalDrives);
    play.pass();
    EXPECT_EQ(play.driveNumbers(), (Numbers{})) << "pulling it again does nothing";
    play.pass();
    EXPECT_EQ(play.driveNumbers(), (Numbers{3}));
}

TEST(ReinsertedDrive, FindsItsRecordZeroedAndFilledInItsOldPlace)
{
    Playground play(machine(R"({"atPass": 1, "hba": 0, "physicalDrive": 2, "set": {"status": "failed"}},
        {"atPass": 2, "hba": 0, "pull": 2}, {"atPass": 3, "hba": 0, "insert": 2})"));
    SasPhysicalDriveRecord* record = play.drives().at(1);
    const SasPhysicalDriveRecord fresh = *record;
    record->oldStatus = 77;
    record->acknowledged = 78;
    play.pass();
    EXPECT_EQ(record->oldStatus, 77);
    std::memset(record->gap382, 0xEE, sizeof record->gap382);
    play.pass(2);
    EXPECT_EQ(play.driveNumbers(), (Numbers{1, 2, 3}));
    ASSERT_EQ(play.drives().at(1), record);
    EXPECT_EQ(std::memcmp(record, &fresh, sizeof fresh), 0) << "as the file describes it, and nothing else";
}

TEST(ReinsertedDrive, WithADescriptionIsAnotherDiskInItsPlace)
{
    Playground play(machine(R"({"atPass": 1, "hba": 0, "pull": 2},
        {"atPass": 2, "hba": 0, "insert": {"driveNumber": 2, "inquiry": "ACME NEW"}},
        {"atPass": 3, "hba": 0, "pull": 2}, {"atPass": 4, "hba": 0, "insert": 2})"));
    const SasPhysicalDriveRecord* record = play.drives().at(1);
    play.pass(2);
    ASSERT_EQ(play.drives().at(1), record);
    EXPECT_EQ(textOf(record->inquiry), "ACME NEW");
    EXPECT_EQ(textOf(record->serialNumber), "") << "nothing is left of the disk before";
    play.pass(2);
    EXPECT_EQ(textOf(record->serialNumber), "S2") << "the number alone is the disk of the file";
}

TEST(InsertedDrive, ThatTheFileDoesNotListComesLast)
{
    Playground play(machine(R"({"atPass": 1, "hba": 0, "insert": {"driveNumber": 9, "serialNumber": "S9"}},
        {"atPass": 2, "hba": 0, "physicalDrive": 9, "set": {"status": 12}},
        {"atPass": 3, "hba": 0, "pull": 9}, {"atPass": 4, "hba": 0, "insert": {"driveNumber": 9}})"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    EXPECT_EQ(play.driveNumbers(), (Numbers{1, 2, 3}));
    play.pass();
    EXPECT_EQ(play.driveNumbers(), (Numbers{1, 2, 3, 9}));
    const SasPhysicalDriveRecord* record = play.drives().at(3);
    EXPECT_EQ(textOf(record->serialNumber), "S9");
    EXPECT_EQ(std::uint32_t{record->hbaNumber}, 0U);
    play.pass();
    EXPECT_EQ(record->status, 12);
    play.pass(2);
    EXPECT_EQ(play.drives().at(3), record);
    EXPECT_EQ(textOf(record->serialNumber), "");
}

TEST(InsertedDrive, ThatIsThereAlreadyStaysAsItIs)
{
    Playground play(machine(R"({"atPass": 1, "hba": 0, "insert": {"driveNumber": 2, "serialNumber": "X"}})"));
    play.drives().at(1)->oldStatus = 2;
    play.pass();
    EXPECT_EQ(play.driveNumbers(), (Numbers{1, 2, 3}));
    EXPECT_EQ(textOf(play.drives().at(1)->serialNumber), "S2");
    EXPECT_EQ(play.drives().at(1)->oldStatus, 2);
}

TEST(DrivesWithOneNumber, AreTwoRecordsThatGoOneByOne)
{
    Playground play(oneHba(R"("physicalDrives": [{"driveNumber": 5, "serialNumber": "A"},
        {"driveNumber": 5, "serialNumber": "B", "duplicateNumber": true}])",
                           R"("timeline": [{"atPass": 1, "hba": 0, "pull": 5, "occurrence": 2},
        {"atPass": 2, "hba": 0, "pull": 5}, {"atPass": 3, "hba": 0, "insert": 5, "occurrence": 2}])"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    const std::vector<SasPhysicalDriveRecord*> both = play.drives();
    ASSERT_EQ(both.size(), 2U);
    EXPECT_NE(both[0], both[1]);
    play.pass();
    EXPECT_EQ(play.drives(), (std::vector<SasPhysicalDriveRecord*>{both[0]}));
    play.pass();
    EXPECT_TRUE(play.drives().empty());
    play.pass();
    EXPECT_EQ(play.drives(), (std::vector<SasPhysicalDriveRecord*>{both[1]}));
    EXPECT_EQ(textOf(both[1]->serialNumber), "B");
}

TEST(ChangedDriveNumber, IsTheSameRecordUnderAnotherNumber)
{
    Playground play(machine(R"({"atPass": 1, "hba": 0, "physicalDrive": 2, "set": {"driveNumber": 20}})"));
    const std::vector<SasPhysicalDriveRecord*> before = play.drives();
    play.pass();
    EXPECT_EQ(play.drives(), before);
    EXPECT_EQ(play.driveNumbers(), (Numbers{1, 20, 3}));
}

TEST(ProviderBytes, AreNotTouchedByAnyChange)
{
    Playground play(oneHba(R"("physicalDrives": [{"driveNumber": 1}], "logicalDrives": [{"logicalDriveNumber": 1}],
        "storageBoxes": [{"boxNumber": 1}])",
                           R"("timeline": [
        {"atPass": 1, "hba": 0, "set": {"controllerStatus": 3, "firmwareVersion": "2", "slotNumber": 9}},
        {"atPass": 1, "hba": 0, "physicalDrive": 1, "set": {"status": 3, "size": 7, "boxNumber": 3}},
        {"atPass": 1, "hba": 0, "logicalDrive": 1, "set": {"redundancyState": 3, "status": 3, "members": [1]}},
        {"atPass": 1, "hba": 0, "storageBox": 1, "set": {"fanStatus": 3, "physicalPosition": 4,
         "backplaneSpeed": 1}}])"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    play.hba()->oldControllerStatus = 201;
    play.drives().at(0)->oldStatus = 202;
    play.drives().at(0)->acknowledged = 203;
    play.volumes().at(0)->oldRedundancyState = 204;
    play.boxes().at(0)->oldFanStatus = 205;
    play.boxes().at(0)->oldTemperatureStatus = 206;
    play.boxes().at(0)->oldPowerStatus = 207;
    play.pass(2);
    EXPECT_EQ(play.drives().at(0)->status, 3);
    EXPECT_EQ(play.hba()->oldControllerStatus, 201);
    EXPECT_EQ(play.drives().at(0)->oldStatus, 202);
    EXPECT_EQ(play.drives().at(0)->acknowledged, 203);
    EXPECT_EQ(play.volumes().at(0)->oldRedundancyState, 204);
    EXPECT_EQ(play.boxes().at(0)->oldFanStatus, 205);
    EXPECT_EQ(play.boxes().at(0)->oldTemperatureStatus, 206);
    EXPECT_EQ(play.boxes().at(0)->oldPowerStatus, 207);
}

} // namespace
} // namespace KDV
