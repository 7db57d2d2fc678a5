// The one status of a drive: what speaks first when many things are wrong at once, and that nothing unknown is OK.
#include "sashba/sysfs/DriveStatus.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

// One way to a drive that is well.
struct Way {
    ScsiDevice device;
    DeviceAnswer answer;

    Way()
    {
        device.state = "running";
        answer.readiness = Readiness::Ready;
    }
    DrivePathFacts facts() const { return {&device, &answer}; }
};

TEST(DriveStatus, IsTheWorstOfWhatIsWrongInAFixedOrder)
{
    Way way;
    SlotHealth slot;
    DriveFacts facts;
    facts.paths = {way.facts()};
    facts.slot = &slot;
    EXPECT_EQ(driveStatus(facts), 2);
    way.answer.warned = true;
    EXPECT_EQ(driveStatus(facts), 12);
    way.answer.enduranceUsed = 100;
    EXPECT_EQ(driveStatus(facts), 10);
    way.answer.failurePredicted = true;
    EXPECT_EQ(driveStatus(facts), 3);
    slot.failed = true;
    EXPECT_EQ(driveStatus(facts), 4);
    way.answer.readiness = Readiness::NotReady;
    EXPECT_EQ(driveStatus(facts), 6);
    way.answer.readiness = Readiness::NoConnect;
    EXPECT_EQ(driveStatus(facts), 7);
    way.device.state = "offline";
    EXPECT_EQ(driveStatus(facts), 5);
}

TEST(DriveStatus, IsUnknownWhereNobodySaysThatItIsWell)
{
    DriveFacts none;
    EXPECT_EQ(driveStatus(none), 0);
    Way way;
    DriveFacts facts;
    facts.paths = {{&way.device, nullptr}};
    EXPECT_EQ(driveStatus(facts), 0) << "nobody asked it";
    facts.paths = {way.facts()};
    for (const Readiness readiness : {Readiness::Ready, Readiness::Asleep}) {
        way.answer.readiness = readiness;
        EXPECT_EQ(driveStatus(facts), 2);
        for (const char* state : {"blocked", "quiesce", "created", "cancel", "deleted", "", "\xFF"}) {
            way.device.state = state;
            EXPECT_EQ(driveStatus(facts), 0) << state;
        }
        way.device.state = "running";
    }
    way.answer.readiness = Readiness::Ready;
    way.answer.hung = true;
    way.answer.failurePredicted = true;
    EXPECT_EQ(driveStatus(facts), 0) << "what it said before it hung is not known to hold";
}

TEST(DriveStatus, ABoxSpeaksAlsoForADriveThatSaysNothing)
{
    Way way;
    way.answer.readiness = Readiness::Unknown;
    SlotHealth slot;
    SlotState state{"OK", std::uint64_t{0}};
    DriveFacts facts;
    facts.paths = {way.facts()};
    facts.slot = &slot;
    facts.slotState = &state;
    EXPECT_EQ(driveStatus(facts), 0) << "a slot that is OK says nothing of what is in it";
    slot.failurePredicted = true;
    EXPECT_EQ(driveStatus(facts), 3);
    const struct {
        const char* status;
        std::optional<std::uint64_t> fault;
        int expected;
    } cases[] = {{"critical", 0, 4},
                 {"unrecoverable", std::nullopt, 4},
                 {"OK", 4, 4},
                 {"OK", 6, 4},
                 {"OK", 2, 3},
                 {"non-critical", 0, 3},
                 {"not installed", 0, 3},
                 {"unknown", std::nullopt, 3},
                 {"unavailable", 0, 3},
                 {"unsupported", 0, 3}};
    for (const auto& one : cases) {
        state = {one.status, one.fault};
        EXPECT_EQ(driveStatus(facts), one.expected) << one.status;
    }
}

TEST(DriveStatus, OneGoodWayIsEnoughAndOneBadWordToo)
{
    Way good;
    Way bad;
    DriveFacts facts;
    facts.paths = {bad.facts(), good.facts()};
    bad.device.state = "offline";
    EXPECT_EQ(driveStatus(facts), 2);
    bad.device.state = "running";
    for (const Readiness readiness : {Readiness::NoConnect, Readiness::NotReady, Readiness::Unknown}) {
        bad.answer.readiness = readiness;
        EXPECT_EQ(driveStatus(facts), 2);
    }
    bad.answer.failurePredicted = true;
    EXPECT_EQ(driveStatus(facts), 3) << "the drive said it, whichever way it came";
    good.device.state = "offline";
    bad.answer.failurePredicted.reset();
    bad.answer.readiness = Readiness::NoConnect;
    EXPECT_EQ(driveStatus(facts), 7) << "no way leads to it";
}

} // namespace
} // namespace KDV
