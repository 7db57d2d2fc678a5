// A scenario file that changes, breaks, goes and comes while it is played.
#include "Playground.h"

#include <cstring>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>

namespace KDV {
namespace {

using testing::HasSubstr;

std::string withStatus(int code)
{
    return oneHba(R"("physicalDrives": [{"driveNumber": 1, "status": )" + std::to_string(code) + "}]");
}

int driveStatus(const Playground& play) { return play.drives().at(0)->status; }

TEST(ChangedFile, IsTakenUpByTheNextRefresh)
{
    Playground play(withStatus(2));
    SasPhysicalDriveRecord* drive = play.drives().at(0);
    drive->oldStatus = 2;
    drive->acknowledged = 9;
    play.write(withStatus(10));
    EXPECT_EQ(driveStatus(play), 2) << "not before";
    play.pass();
    EXPECT_EQ(driveStatus(play), 10);
    EXPECT_EQ(play.drives().at(0), drive);
    EXPECT_EQ(drive->oldStatus, 2) << "the provider's byte of a record that stays";
    EXPECT_EQ(drive->acknowledged, 9);
}

TEST(ChangedFile, IsSeenEvenWithTheSameSizeAndTime)
{
    Playground play(withStatus(10));
    for (int code = 11; code < 99; ++code) { // faster than a file system's clock
        play.write(withStatus(code));
        play.pass();
        ASSERT_EQ(driveStatus(play), code);
    }
}

TEST(ChangedFile, StartsItsTimelineAnew)
{
    const std::string timeline = R"("timeline": [{"atPass": 2, "hba": 0, "physicalDrive": 1, "set": {"status": 12}}])";
    Playground play(oneHba(R"("physicalDrives": [{"driveNumber": 1}])", timeline));
    play.pass(2);
    EXPECT_EQ(driveStatus(play), 12);
    play.write(oneHba(R"("physicalDrives": [{"driveNumber": 1, "size": 1}])", timeline));
    play.pass();
    EXPECT_EQ(driveStatus(play), 2) << "the refresh that takes it up is its pass 0";
    play.pass();
    EXPECT_EQ(driveStatus(play), 2);
    play.pass();
    EXPECT_EQ(driveStatus(play), 12);
}

TEST(ChangedFile, LinksWhatAppearsAndUnlinksWhatVanishes)
{
    Playground play(R"({"hbas": [{"hbaNumber": 0, "physicalDrives": [{"driveNumber": 1}, {"driveNumber": 2}],
        "logicalDrives": [{"logicalDriveNumber": 1}], "storageBoxes": [{"boxNumber": 1}, {"boxNumber": 2}]},
        {"hbaNumber": 1, "physicalDrives": [{"driveNumber": 1}]}]})");
    SasHbaRecord* const first = play.hba(0);
    SasHbaRecord* const second = play.hba(1);
    const auto drives = play.drives();
    const auto boxes = play.boxes();
    SasPhysicalDriveRecord* const behindSecond = play.drives(1).at(0);
    second->oldControllerStatus = 3;

    play.write(R"({"hbas": [{"hbaNumber": 7}, {"hbaNumber": 0,
        "physicalDrives": [{"driveNumber": 3}, {"driveNumber": 2}], "storageBoxes": [{"boxNumber": 2}]}]})");
    play.pass();
    ASSERT_EQ(play.hbas().size(), 2U);
    EXPECT_EQ(play.hba(1), first);
    EXPECT_NE(play.hba(0), second) << "a record is never given to another element";
    const auto now = play.drives(1);
    ASSERT_EQ(now.size(), 2U);
    EXPECT_EQ(std::uint32_t{now[0]->driveNumber}, 3U);
    EXPECT_EQ(now[1], drives[1]);
    EXPECT_FALSE(first->logicalDrives);
    EXPECT_EQ(recordsOf(first->storageBoxes), (std::vector<SasStorageBoxRecord*>{boxes[1]}));
    EXPECT_EQ(std::uint32_t{second->hbaNumber}, 1U) << "still readable";
    EXPECT_FALSE(second->physicalDrives) << "what was behind it is gone as well";
    EXPECT_EQ(second->oldControllerStatus, 3);
    EXPECT_EQ(std::uint32_t{behindSecond->driveNumber}, 1U);

    play.write(R"({"hbas": [{"hbaNumber": 1, "physicalDrives": [{"driveNumber": 1}]}]})");
    play.pass();
    ASSERT_EQ(play.hbas().size(), 1U);
    EXPECT_EQ(play.hba(0), second);
    EXPECT_EQ(second->oldControllerStatus, 0) << "it came anew";
    EXPECT_EQ(play.drives(0), (std::vector<SasPhysicalDriveRecord*>{behindSecond}));
}

TEST(ChangedFile, BringsBackWhatTheTimelinePulled)
{
    const std::string timeline = R"("timeline": [{"atPass": 1, "hba": 0, "pull": 1}])";
    Playground play(oneHba(R"("physicalDrives": [{"driveNumber": 1}])", timeline));
    SasPhysicalDriveRecord* drive = play.drives().at(0);
    drive->oldStatus = 5;
    play.pass();
    EXPECT_TRUE(play.drives().empty());
    play.write(oneHba(R"("physicalDrives": [{"driveNumber": 1, "size": 3}])", timeline));
    play.pass();
    EXPECT_EQ(play.drives(), (std::vector<SasPhysicalDriveRecord*>{drive}));
    EXPECT_EQ(drive->oldStatus, 0);
}

TEST(BrokenFile, AtTheStartGivesNoHbaAndOneError)
{
    Playground play("{\"hbas\": [{\"hbaNumber\": -1, \"nam\": 3}]}");
    EXPECT_TRUE(play.hbas().empty());
    play.pass(3);
    ASSERT_EQ(play.errors.size(), 1U);
    EXPECT_THAT(play.errors[0], HasSubstr(play.path()));
    EXPECT_THAT(play.errors[0], HasSubstr("(no HBA): /hbas/0/hbaNumber: expected a whole number"));
    EXPECT_THAT(play.errors[0], HasSubstr("; /hbas/0/nam: expected a known field"));
    EXPECT_TRUE(play.hbas().empty());
}

TEST(BrokenFile, LaterLeavesTheLastGoodStateAndGivesOneErrorAVersion)
{
    Playground play(withStatus(10));
    play.write("{\"hbas\": [");
    play.pass(5);
    EXPECT_EQ(driveStatus(play), 10);
    ASSERT_EQ(play.errors.size(), 1U);
    EXPECT_THAT(play.errors[0], HasSubstr("(the last good state stays): line 1, column 11"));
    play.write("{\"hbas\": 3}");
    play.pass(5);
    EXPECT_EQ(driveStatus(play), 10);
    ASSERT_EQ(play.errors.size(), 2U);
    EXPECT_THAT(play.errors[1], HasSubstr("/hbas: expected an array"));
    play.write(withStatus(12));
    play.pass();
    EXPECT_EQ(driveStatus(play), 12);
    EXPECT_EQ(play.errors.size(), 2U);
}

TEST(BrokenFile, LetsTheOldTimelineGoOn)
{
    Playground play(oneHba(R"("physicalDrives": [{"driveNumber": 1}])",
                           R"("timeline": [{"atPass": 2, "hba": 0, "physicalDrive": 1, "set": {"status": 12}}])"));
    play.write("nonsense");
    play.pass(2);
    EXPECT_EQ(driveStatus(play), 12);
}

TEST(MissingFile, AtTheStartIsOneErrorAndTheFileIsTakenUpWhenItComes)
{
    Playground play;
    play.start("");
    EXPECT_TRUE(play.hbas().empty());
    play.removeFile();
    play.pass(3);
    ASSERT_EQ(play.errors.size(), 2U) << "an empty file, then none";
    EXPECT_THAT(play.errors[1], HasSubstr("expected a readable file: No such file or directory; no HBA"));
    play.write(withStatus(10));
    play.pass();
    EXPECT_EQ(driveStatus(play), 10);
}

TEST(MissingFile, LaterLeavesTheLastGoodState)
{
    Playground play(withStatus(10));
    play.removeFile();
    play.pass(3);
    EXPECT_EQ(driveStatus(play), 10);
    ASSERT_EQ(play.errors.size(), 1U);
    EXPECT_THAT(play.errors[0], HasSubstr("; the last good state stays"));
    play.write(withStatus(11));
    play.pass();
    EXPECT_EQ(driveStatus(play), 11);
    play.removeFile();
    play.pass();
    EXPECT_EQ(play.errors.size(), 2U) << "gone once more";
}

TEST(StrangeFile, APipeOrAFolderIsRefusedWithoutWaiting)
{
    Playground play(withStatus(10));
    play.removeFile();
    ASSERT_EQ(mkfifo(play.path().c_str(), 0600), 0);
    play.pass(2);
    ASSERT_EQ(play.errors.size(), 1U);
    EXPECT_THAT(play.errors[0], HasSubstr("not a regular file"));
    play.removeFile();
    ASSERT_EQ(mkdir(play.path().c_str(), 0700), 0);
    play.pass(2);
    EXPECT_EQ(play.errors.size(), 1U) << "the same trouble is told once";
    EXPECT_EQ(driveStatus(play), 10);
}

TEST(StrangeFile, AHugeOneIsRefusedUnread)
{
    Playground play(withStatus(10));
    play.write("");
    ASSERT_EQ(truncate(play.path().c_str(), off_t{65} * 1024 * 1024), 0);
    play.pass();
    ASSERT_EQ(play.errors.size(), 1U);
    EXPECT_THAT(play.errors[0], HasSubstr("larger than 64 MiB"));
    EXPECT_EQ(driveStatus(play), 10);
}

} // namespace
} // namespace KDV
