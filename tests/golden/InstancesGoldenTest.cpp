// Holds every published instance class against its file of expected tables, under each kind of broker.
#include "GivenRecords.h"
#include "PublishedClasses.h"
#include "RowsFile.h"
#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/InstanceObject.h"
#include "broker/RequestScope.h"
#include "common/KDVUtil.h"
#include "harness/Schema.h"

#include <fstream>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace KDV::Test {
namespace {

using namespace CmpiCpp;
using namespace Host;

std::vector<GoldenCase> casesOf(const std::string& className)
{
    std::ifstream file(KDV_SOURCE_DIR "/tests/golden/instances/" + className + ".rows");
    if (!file) throw std::runtime_error("no expected table for " + className);
    return readRows(file, className + ".rows");
}

std::string lines(const std::vector<GoldenRow>& rows)
{
    std::string text;
    for (const GoldenRow& row : rows)
        text += row.type + " " + row.name + " " + row.value + "\n";
    return text;
}

// A new instance may come with defaults of its class; published is what was set.
std::string linesSet(const CollectedInstance& instance)
{
    std::string text;
    for (const CollectedProperty& property : instance.properties)
        if (!property.preset) text += property.type + " " + property.name + " " + property.value + "\n";
    return text;
}

std::string expectedPath(const std::string& className, const std::vector<GoldenRow>& keys)
{
    std::string path = "//" + KDVUtil::getHostName() + "/root/vnr:" + className;
    char separator = '.';
    for (const GoldenRow& key : keys) {
        path += separator + key.name + "=" + key.value;
        separator = ',';
    }
    return path;
}

class GoldenTables : public testing::TestWithParam<std::tuple<Profile, PublishedClass>> {
protected:
    GoldenTables() : broker(schema(), {std::get<0>(GetParam()), true})
    {
        KDVUtil::setBroker(broker.cmpi());
        CmpiObjectPath::setDefaultNameSpace("root/vnr");
    }

    void compare(const PublishedClass& published, const GoldenCase& golden)
    {
        const RequestScope scope(broker, "root/vnr");
        GivenRecords given(logger);
        for (const GoldenSetting& setting : golden.before)
            given.set(setting);
        const std::unique_ptr<CmpiManagedInstance> object = published.make(logger, given);
        for (const GoldenSetting& setting : golden.after)
            given.set(setting);

        EXPECT_EQ(object->getPath().str(), expectedPath(published.name, golden.keys));
        const CmpiInstance instance = object->getInstance();
        const CollectedInstance collected = collect(*static_cast<const InstanceObject*>(instance.raw()));
        EXPECT_EQ(collected.className, published.name);
        EXPECT_EQ(linesSet(collected), lines(golden.rows));
    }

    Logger logger{"golden"};
    Broker broker;
};

TEST_P(GoldenTables, AreWhatTheClassPublishes)
{
    const PublishedClass& published = std::get<1>(GetParam());
    for (const GoldenCase& golden : casesOf(published.name)) {
        SCOPED_TRACE(golden.title);
        compare(published, golden);
    }
    const BrokerStatistics statistics = broker.statistics();
    EXPECT_TRUE(statistics.lifetimesClean());
    EXPECT_EQ(statistics.leftToScope, 0u);
    EXPECT_EQ(statistics.droppedProperties, 0u);
    EXPECT_EQ(statistics.refusedProperties, 0u);
}

std::string testName(const testing::TestParamInfo<std::tuple<Profile, PublishedClass>>& info)
{
    return std::string(profileName(std::get<0>(info.param))) + "_" + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(Brokers, GoldenTables,
                         testing::Combine(testing::ValuesIn(allProfiles), testing::ValuesIn(publishedClasses())),
                         testName);

// Against the schema, so that a class that is forgotten here is seen.
TEST(GoldenTables, ExistForEveryInstanceClassOfTheSchema)
{
    std::set<std::string> tested;
    for (const PublishedClass& published : publishedClasses())
        tested.insert(published.name);
    const std::set<std::string> elsewhere{"KDV_ComputerSystem", "KDV_AutoStartSASHBA", "KDV_SASIndication"};
    std::size_t found = 0;
    for (const auto& declared : schema().findNamespace("root/vnr")->classes()) {
        const std::string& name = declared->name();
        if (name.rfind("KDV_", 0) != 0 || declared->isAssociation() || elsewhere.count(name) != 0) continue;
        ++found;
        EXPECT_EQ(tested.count(name), 1u) << name;
        EXPECT_FALSE(casesOf(name).front().rows.empty()) << name;
    }
    EXPECT_EQ(found, 30u);
}

TEST(GoldenTables, HaveAKeyForEveryKeyOfTheClass)
{
    for (const PublishedClass& published : publishedClasses()) {
        const ClassInfo& declared = *schema().find("root/vnr", published.name);
        std::set<std::string> expected;
        for (const int key : declared.keys())
            expected.insert(declared.properties()[static_cast<std::size_t>(key)].name);
        const GoldenCase base = casesOf(published.name).front();
        std::set<std::string> tabled;
        for (const GoldenRow& key : base.keys)
            tabled.insert(key.name);
        EXPECT_EQ(tabled, expected) << published.name;
    }
}

// The first case of each file has every property that the class ever publishes, in order.
TEST(GoldenTables, BeginWithEveryPropertyThatTheSchemaSaysIsPublished)
{
    std::ifstream file(KDV_SOURCE_DIR "/schema/published.json");
    const auto listed = nlohmann::json::parse(file);
    for (const PublishedClass& published : publishedClasses()) {
        std::string expected;
        for (const auto& row : listed.at(published.name))
            expected += row.at("type").get<std::string>() + (row.at("array").get<bool>() ? "[] " : " ") +
                        row.at("name").get<std::string>() + "\n";
        const GoldenCase base = casesOf(published.name).front();
        std::string tabled;
        for (const GoldenRow& row : base.rows)
            tabled += row.type + " " + row.name + "\n";
        EXPECT_EQ(tabled, expected) << published.name;
    }
}

} // namespace
} // namespace KDV::Test
