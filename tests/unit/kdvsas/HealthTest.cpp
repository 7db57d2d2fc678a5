#include "kdv-sas/Health.h"

#include <gtest/gtest.h>

namespace KdvSas {
namespace {

TEST(Health, FollowsTheFirstOperationalStatus)
{
    EXPECT_EQ(healthOf({2}), Health::Ok);
    EXPECT_EQ(healthOf({3}), Health::Degraded);
    EXPECT_EQ(healthOf({5}), Health::Degraded);
    EXPECT_EQ(healthOf({6}), Health::Failed);
    EXPECT_EQ(healthOf({0}), Health::Unknown);
    EXPECT_EQ(healthOf({}), Health::Unknown);
    EXPECT_EQ(healthOf({4711}), Health::Unknown);
    EXPECT_EQ(healthOf({5, 32774}), Health::Degraded);
}

TEST(Health, KnowsTheVendorValuesOfBoxes)
{
    const Health expected[] = {Health::Unknown, Health::Ok,     Health::Failed,   Health::Degraded,
                               Health::Unknown, Health::Failed, Health::Ok,       Health::Degraded,
                               Health::Unknown, Health::Ok,     Health::Degraded, Health::Failed};
    for (unsigned long i = 0; i < 12; ++i)
        EXPECT_EQ(healthOf({32768 + i}), expected[i]) << 32768 + i;
}

TEST(Health, HasTheExitStatesOfMonitoringPlugins)
{
    EXPECT_EQ(exitStatus(Health::Ok), 0);
    EXPECT_EQ(exitStatus(Health::Degraded), 1);
    EXPECT_EQ(exitStatus(Health::Failed), 2);
    EXPECT_EQ(exitStatus(Health::Unknown), 3);
}

TEST(Health, RanksFailedOverDegradedOverUnknownOverOk)
{
    EXPECT_EQ(worse(Health::Ok, Health::Unknown), Health::Unknown);
    EXPECT_EQ(worse(Health::Degraded, Health::Unknown), Health::Degraded);
    EXPECT_EQ(worse(Health::Degraded, Health::Failed), Health::Failed);
}

} // namespace
} // namespace KdvSas
