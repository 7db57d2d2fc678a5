#include "common/PassTimetable.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
namespace KDV {
namespace {

constexpr PassClock::Time start = 1000s;

struct Timetable : testing::Test {
    Timetable() { table.start(start, 5s); }
    PassTimetable table{30s};
};

TEST_F(Timetable, HasItsFirstPassAfterTheGivenTime)
{
    EXPECT_FALSE(table.takePass(start + 4999ms));
    EXPECT_EQ(table.nextLook(), start + 5s);
    EXPECT_TRUE(table.takePass(start + 5s));
    EXPECT_EQ(table.nextLook(), start + 35s);
}

TEST_F(Timetable, MeasuresIntervalsFromStartToStart)
{
    EXPECT_TRUE(table.takePass(start + 5s));
    table.passEnded(start + 25s);
    EXPECT_FALSE(table.takePass(start + 34s));
    EXPECT_TRUE(table.takePass(start + 35s));
    table.passEnded(start + 36s);
    EXPECT_TRUE(table.takePass(start + 66s)); // a second late
    EXPECT_EQ(table.nextLook(), start + 95s); // but the grid stays
}

TEST_F(Timetable, FollowsAPassThatOverrunsAtTheNextFullInterval)
{
    EXPECT_TRUE(table.takePass(start + 5s));
    EXPECT_FALSE(table.takePass(start + 35s));
    table.passEnded(start + 40s);
    EXPECT_FALSE(table.takePass(start + 40s));
    EXPECT_EQ(table.nextLook(), start + 65s);
    EXPECT_TRUE(table.takePass(start + 65s));
    table.passEnded(start + 130s); // nobody looked meanwhile
    EXPECT_FALSE(table.takePass(start + 130s));
    EXPECT_EQ(table.nextLook(), start + 155s);
}

TEST_F(Timetable, StartsARequestedPassAtOnceAndMovesNothing)
{
    table.request();
    EXPECT_TRUE(table.takePass(start + 1s));
    table.passEnded(start + 2s);
    EXPECT_FALSE(table.takePass(start + 2s));
    EXPECT_EQ(table.nextLook(), start + 5s);
}

TEST_F(Timetable, TakesRequestsDuringAPassAsOneAfterIt)
{
    EXPECT_TRUE(table.takePass(start + 5s));
    table.request();
    table.request();
    EXPECT_FALSE(table.takePass(start + 6s));
    table.passEnded(start + 7s);
    EXPECT_TRUE(table.takePass(start + 7s));
    table.passEnded(start + 8s);
    EXPECT_FALSE(table.takePass(start + 8s));
}

TEST_F(Timetable, CountsARequestAsServedByTheRegularPassThatStartsFirst)
{
    table.request();
    EXPECT_TRUE(table.takePass(start + 5s));
    table.passEnded(start + 6s);
    EXPECT_FALSE(table.takePass(start + 6s));
}

TEST(PassTimetable, HasNoPassBeforeItIsStarted)
{
    PassTimetable table(30s);
    table.request();
    EXPECT_FALSE(table.takePass(start));
    table.start(start, 5s);
    EXPECT_TRUE(table.takePass(start));
}

TEST(PassTimetable, HasOnlyRequestedPassesWithoutAnInterval)
{
    PassTimetable table(0s);
    table.start(start, 0s);
    EXPECT_FALSE(table.takePass(start + 1000h));
    EXPECT_EQ(table.nextLook(), PassClock::never);
    table.request();
    EXPECT_TRUE(table.takePass(start));
}

} // namespace
} // namespace KDV
