// When changes come: by pass, by time, in rounds.
#include "Playground.h"

#include <chrono>
#include <string>
#include <vector>

namespace KDV {
namespace {

using namespace std::chrono_literals;

std::string machine(const std::string& timeline, const std::string& rest = "")
{
    return oneHba(R"("physicalDrives": [{"driveNumber": 1}, {"driveNumber": 2}],
        "logicalDrives": [{"logicalDriveNumber": 1}], "storageBoxes": [{"boxNumber": 1}])",
                  "\"timeline\": [" + timeline + "]" + rest);
}

// Sets the status of drive 1.
std::string status(const std::string& due, int code)
{
    return "{" + due + R"(, "hba": 0, "physicalDrive": 1, "set": {"status": )" + std::to_string(code) + "}}";
}

int driveStatus(const Playground& play) { return play.drives().at(0)->status; }

TEST(TimelineByPass, APassIsARefreshAfterTheLoad)
{
    Playground play(machine(status("\"atPass\": 1", 11) + ", " + status("\"atPass\": 3", 13)));
    EXPECT_EQ(driveStatus(play), 2);
    std::vector<int> seen;
    for (int pass = 1; pass <= 4; ++pass) {
        play.pass();
        seen.push_back(driveStatus(play));
    }
    EXPECT_EQ(seen, (std::vector<int>{11, 11, 13, 13}));
}

TEST(TimelineByPass, ChangesOfOnePassComeInTheOrderOfTheFileAndTheFileNeedsNoOrder)
{
    Playground play(
        machine(status("\"atPass\": 2", 20) + ", " + status("\"atPass\": 1", 10) + ", " + status("\"atPass\": 2", 21)));
    play.pass();
    EXPECT_EQ(driveStatus(play), 10);
    play.pass();
    EXPECT_EQ(driveStatus(play), 21);
}

TEST(TimelineByPass, ReachesEveryKindOfElementAndOnlyThat)
{
    Playground play(machine(R"(
        {"atPass": 1, "hba": 0, "set": {"controllerStatus": "failed"}},
        {"atPass": 1, "hba": 0, "physicalDrive": 2, "set": {"status": "predictiveFailure"}},
        {"atPass": 1, "hba": 0, "logicalDrive": 1, "set": {"redundancyState": "rebuilding", "rebuildingDrive": 2}},
        {"atPass": 1, "hba": 0, "storageBox": 1, "set": {"fanStatus": "failed"}})"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    play.pass();
    EXPECT_EQ(play.hba()->controllerStatus, 3);
    EXPECT_EQ(play.drives().at(0)->status, 2);
    EXPECT_EQ(play.drives().at(1)->status, 3);
    EXPECT_EQ(play.volumes().at(0)->redundancyState, 4);
    EXPECT_EQ(std::uint32_t{play.volumes().at(0)->rebuildingDrive}, 2U);
    EXPECT_EQ(play.boxes().at(0)->fanStatus, 5);
    EXPECT_EQ(play.boxes().at(0)->powerStatus, 2);
}

TEST(TimelineByPass, AHundredEventlessPassesChangeNothing)
{
    Playground play(machine(""));
    const SasPhysicalDriveRecord before = *play.drives().at(0);
    play.pass(100);
    EXPECT_EQ(std::memcmp(&before, play.drives().at(0), sizeof before), 0);
    EXPECT_TRUE(play.errors.empty());
}

TEST(TimelineBySeconds, FollowsTheClockFromTheLoadOn)
{
    Playground play;
    play.now += 1000s;
    play.start(machine(status("\"afterSeconds\": 1.5", 15) + ", " + status("\"afterSeconds\": 10", 100)));
    play.now += 1499ms;
    play.pass();
    EXPECT_EQ(driveStatus(play), 2);
    play.now += 1ms;
    play.pass();
    EXPECT_EQ(driveStatus(play), 15);
    play.now += 20s;
    play.pass();
    EXPECT_EQ(driveStatus(play), 100);
}

TEST(TimelineBySeconds, DoesNotDependOnPasses)
{
    Playground play(machine(status("\"afterSeconds\": 5", 50) + ", " + status("\"atPass\": 2", 22)));
    play.pass(3);
    EXPECT_EQ(driveStatus(play), 22);
    play.now += 5s;
    play.pass();
    EXPECT_EQ(driveStatus(play), 50);
}

TEST(RepeatedTimeline, PlaysEveryRoundAgain)
{
    Playground play(
        machine(status("\"atPass\": 1", 11) + ", " + status("\"atPass\": 3", 13), R"(, "repeatEvery": {"passes": 3})"));
    std::vector<int> seen;
    for (int pass = 1; pass <= 8; ++pass) {
        play.pass();
        seen.push_back(driveStatus(play));
    }
    EXPECT_EQ(seen, (std::vector<int>{11, 11, 13, 11, 11, 13, 11, 11}));
}

TEST(RepeatedTimeline, BySecondsLeavesTheStateOfTheRoundsThatNobodySaw)
{
    Playground play(machine(status("\"afterSeconds\": 2", 20) + ", " + status("\"afterSeconds\": 4", 40),
                            R"(, "repeatEvery": {"seconds": 10})"));
    play.now += 1000003s; // three seconds into a late round
    play.pass();
    EXPECT_EQ(driveStatus(play), 20);
    play.now += 1s;
    play.pass();
    EXPECT_EQ(driveStatus(play), 40);
    play.now += 7s; // one second into the next round: nothing is due yet
    play.pass();
    EXPECT_EQ(driveStatus(play), 40);
    play.now += 1s;
    play.pass();
    EXPECT_EQ(driveStatus(play), 20);
}

TEST(RepeatedTimeline, ALongSleepPlaysAtMostOneWholeRoundMore)
{
    int played = 0;
    Track track;
    track.round = 10;
    for (const std::uint64_t due : {2U, 4U}) {
        Change change;
        change.due = due;
        track.changes.push_back(change);
    }
    TrackPlayer player(track);
    player.advanceTo(1000000003, [&played](const Change&) { ++played; });
    EXPECT_EQ(played, 5) << "the first round, the last whole one, and one change of the current one";
}

TEST(RepeatedTimeline, WithoutChangesEndsAtOnce)
{
    Playground play(machine("", R"(, "repeatEvery": {"passes": 1, "seconds": 0.001})"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    play.now += 1000000s;
    play.pass(3);
    EXPECT_EQ(driveStatus(play), 2);
}

} // namespace
} // namespace KDV
