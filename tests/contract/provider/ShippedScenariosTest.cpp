// The provider library with the shipped data library and the shipped scenarios, as it is started with.
#include "LoadedProvider.h"
#include "harness/Schema.h"

#include <cstdlib>
#include <set>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

using namespace Host;

class ShippedScenario : public testing::TestWithParam<Profile> {
protected:
    static void choose(const std::string& name)
    {
        setenv("KDV_SAS_SCENARIO", (KDV_SOURCE_DIR "/scenarios/" + name).c_str(), 1);
    }

    // How many classes have instances; every request has to go well.
    static std::size_t enumerateEveryClass(const Requests& ask)
    {
        std::size_t published = 0;
        for (const auto& declared : schema().findNamespace("root/vnr")->classes()) {
            const std::string& name = declared->name();
            if (name.rfind("KDV_", 0) != 0) continue;
            const Reply reply = ask.instances(name.c_str());
            EXPECT_EQ(reply.rc, CMPI_RC_OK) << name << ": " << reply.message;
            EXPECT_EQ(ask.instanceNames(name.c_str()).paths.size(), reply.instances.size()) << name;
            published += !reply.instances.empty();
        }
        return published;
    }
};

TEST_P(ShippedScenario, DefaultShowsEveryClass)
{
    choose("default.json");
    LoadedProvider library(GetParam());
    const Requests ask = library.requests();
    EXPECT_EQ(ask.instances("KDV_SASArraySystem").instances.size(), 2u);
    EXPECT_EQ(ask.instances("KDV_SASStorageEnclosure").instances.size(), 3u);
    EXPECT_EQ(ask.instances("KDV_SASDiskDrive").instances.size(), 24u);
    EXPECT_EQ(enumerateEveryClass(ask), 77u); // all 76 and the worker
}

TEST_P(ShippedScenario, DefaultIsServedThroughItsWholeTimeline)
{
    choose("default.json");
    LoadedProvider library(GetParam());
    const Requests ask = library.requests();
    ask.enableIndications();
    std::set<std::size_t> drives;
    for (int pass = 0; pass < 26; ++pass) {
        const Reply reply = ask.pass();
        ASSERT_EQ(reply.rc, CMPI_RC_OK) << "pass " << pass << ": " << reply.message;
        drives.insert(ask.instanceNames("KDV_SASDiskDrive").paths.size());
        EXPECT_GE(enumerateEveryClass(ask), 70u);
    }
    EXPECT_EQ(drives, (std::set<std::size_t>{23, 24})); // a disk is pulled and comes back
    EXPECT_EQ(brokerOf(GetParam()).statistics().refusedProperties, 0u);
    EXPECT_EQ(brokerOf(GetParam()).statistics().droppedProperties, 0u);
    EXPECT_TRUE(brokerOf(GetParam()).statistics().lifetimesClean());
}

TEST_P(ShippedScenario, EverythingFailedIsServedAndWatched)
{
    choose("everything-failed.json");
    LoadedProvider library(GetParam());
    const Requests ask = library.requests();
    ask.enableIndications();
    EXPECT_GE(enumerateEveryClass(ask), 60u);
    EXPECT_EQ(ask.pass().rc, CMPI_RC_OK);
    EXPECT_EQ(ask.instances("KDV_SASArraySystem").instances.at(0).value("OperationalStatus"), "{6}");
}

TEST_P(ShippedScenario, WithoutAScenarioFileNothingButTheWorkerIsServed)
{
    choose("there-is-no-such-file.json");
    LoadedProvider library(GetParam());
    const Requests ask = library.requests();
    EXPECT_EQ(enumerateEveryClass(ask), 1u);
    EXPECT_EQ(ask.pass().rc, CMPI_RC_OK);
}

INSTANTIATE_TEST_SUITE_P(Brokers, ShippedScenario, testing::ValuesIn(allProfiles),
                         [](const auto& made) { return std::string(profileName(made.param)); });

} // namespace
} // namespace KDV::Test
