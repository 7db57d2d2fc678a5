#include "indications/SubscriptionStore.h"

#include "TemporaryDirectory.h"
#include "indications/Refusal.h"
#include "indications/StateText.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace KDV::Host;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

FilterRecord filter(const std::string& name)
{
    FilterRecord record;
    record.key = {"CIM_ComputerSystem", "host", InteropClass::filter, name};
    record.query = "SELECT * FROM KDV_SASIndication WHERE Summary = \"a \xc3\xa4\"";
    record.queryLanguage = "WQL";
    record.sourceNamespace = "root/vnr";
    record.sourceNamespaces = {"root/vnr", "root/other"};
    record.elementName = "filter \"" + name + '"';
    return record;
}

DestinationRecord destination(const std::string& name)
{
    DestinationRecord record;
    record.key = {"CIM_ComputerSystem", "host", InteropClass::destination, name};
    record.url = "http://127.0.0.1:1/x";
    record.persistence = Persistence::Transient;
    record.owner = "somebody";
    return record;
}

SubscriptionRecord subscription(const std::string& filterName, const std::string& destinationName)
{
    SubscriptionRecord record;
    record.key = {filter(filterName).key, destination(destinationName).key};
    record.className = InteropClass::subscription;
    record.policy = FatalErrorPolicy::Remove;
    record.failureTriggerSeconds = 77;
    record.durationSeconds = UINT64_MAX;
    record.stateChanged = -5;
    record.started = 1'700'000'000'000'000;
    record.creator = "root";
    record.info = "made by a test";
    record.enabled = false;
    return record;
}

std::string content(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void put(const std::filesystem::path& file, const std::string& text) { std::ofstream(file) << text; }

std::vector<std::string> names(const std::filesystem::path& directory)
{
    std::vector<std::string> all;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        all.push_back(entry.path().filename().string());
    std::sort(all.begin(), all.end());
    return all;
}

std::pair<int, std::string> refusal(const std::function<void()>& call)
{
    try {
        call();
    } catch (const Refusal& refused) {
        return {refused.rc(), refused.what()};
    }
    return {0, ""};
}

class SubscriptionStoreTest : public testing::Test {
protected:
    SubscriptionStore make(StoreLimits limits = {})
    {
        return SubscriptionStore(_directory.path(), limits, Logger("indications-test"));
    }
    std::filesystem::path file() const { return _directory.path() / "indications.json"; }

    TemporaryDirectory _directory;
};

} // namespace

TEST_F(SubscriptionStoreTest, KeepsEverythingOverARestart)
{
    {
        SubscriptionStore store = make();
        store.load();
        store.add(filter("f"));
        store.add(destination("d"));
        store.add(subscription("f", "d"));
    }
    SubscriptionStore store = make();
    store.load();
    ASSERT_EQ(store.state().filters.size(), 1u);
    const FilterRecord& kept = store.state().filters[0];
    const FilterRecord given = filter("f");
    EXPECT_EQ(kept.key, given.key);
    EXPECT_EQ(kept.query, given.query);
    EXPECT_EQ(kept.queryLanguage, given.queryLanguage);
    EXPECT_EQ(kept.sourceNamespace, given.sourceNamespace);
    EXPECT_EQ(kept.sourceNamespaces, given.sourceNamespaces);
    EXPECT_EQ(kept.elementName, given.elementName);
    EXPECT_FALSE(kept.isStatic);
    ASSERT_EQ(store.state().destinations.size(), 1u);
    EXPECT_EQ(store.state().destinations[0].url, "http://127.0.0.1:1/x");
    EXPECT_EQ(store.state().destinations[0].persistence, Persistence::Transient);
    EXPECT_EQ(store.state().destinations[0].owner, "somebody");
    ASSERT_EQ(store.state().subscriptions.size(), 1u);
    const SubscriptionRecord& one = store.state().subscriptions[0];
    EXPECT_EQ(one.key.filter, subscription("f", "d").key.filter);
    EXPECT_EQ(one.key.handler, subscription("f", "d").key.handler);
    EXPECT_EQ(one.policy, FatalErrorPolicy::Remove);
    EXPECT_EQ(one.failureTriggerSeconds, 77u);
    EXPECT_EQ(one.durationSeconds, UINT64_MAX);
    EXPECT_EQ(one.stateChanged, -5);
    EXPECT_EQ(one.started, 1'700'000'000'000'000);
    EXPECT_EQ(one.creator, "root");
    EXPECT_EQ(one.info, "made by a test");
    EXPECT_FALSE(one.enabled);
}

TEST_F(SubscriptionStoreTest, RefusesDoubles)
{
    SubscriptionStore store = make();
    store.add(filter("f"));
    store.add(destination("d"));
    store.add(subscription("f", "d"));
    EXPECT_EQ(refusal([&] { store.add(filter("f")); }).first, CMPI_RC_ERR_ALREADY_EXISTS);
    EXPECT_EQ(refusal([&] { store.add(destination("d")); }).first, CMPI_RC_ERR_ALREADY_EXISTS);
    EXPECT_EQ(refusal([&] { store.add(subscription("f", "d")); }).first, CMPI_RC_ERR_ALREADY_EXISTS);
}

TEST_F(SubscriptionStoreTest, RefusesSubscriptionsWithoutFilterOrHandler)
{
    SubscriptionStore store = make();
    store.add(filter("f"));
    store.add(destination("d"));
    EXPECT_EQ(refusal([&] { store.add(subscription("g", "d")); }).first, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(refusal([&] { store.add(subscription("f", "e")); }).first, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(store.state().subscriptions.size(), 0u);
}

TEST_F(SubscriptionStoreTest, RemovesOnlyWhatIsNotInUse)
{
    SubscriptionStore store = make();
    store.add(filter("f"));
    store.add(destination("d"));
    store.add(subscription("f", "d"));
    const auto inUse = refusal([&] { store.removeFilter(filter("f").key); });
    EXPECT_EQ(inUse.first, CMPI_RC_ERR_FAILED);
    EXPECT_THAT(inUse.second, HasSubstr("is used by"));
    EXPECT_EQ(refusal([&] { store.removeDestination(destination("d").key); }).first, CMPI_RC_ERR_FAILED);
    store.removeSubscription(subscription("f", "d").key);
    store.removeFilter(filter("f").key);
    store.removeDestination(destination("d").key);
    EXPECT_EQ(refusal([&] { store.removeFilter(filter("f").key); }).first, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(refusal([&] { store.removeDestination(destination("d").key); }).first, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(refusal([&] { store.removeSubscription(subscription("f", "d").key); }).first, CMPI_RC_ERR_NOT_FOUND);
}

TEST_F(SubscriptionStoreTest, KeepsStaticFiltersOutOfTheFileAndInPlace)
{
    {
        SubscriptionStore store = make();
        store.addStatic(filter("static"));
        FilterCollectionRecord collection{"all", "all", "All", {filter("static").key}};
        store.addStatic(collection);
        store.load();
        store.add(destination("d"));
        SubscriptionRecord one = subscription("x", "d");
        one.key.filter = {"", "", InteropClass::collection, "all"};
        store.add(one);
        ASSERT_EQ(store.filtersOf(one).size(), 1u);
        EXPECT_EQ(store.filtersOf(one)[0]->key.name, "static");
        const auto refused = refusal([&] { store.removeFilter(filter("static").key); });
        EXPECT_EQ(refused.first, CMPI_RC_ERR_FAILED);
        EXPECT_THAT(refused.second, HasSubstr("belongs to the server"));
        EXPECT_EQ(content(file()).find("\"static\""), std::string::npos);
    }
    SubscriptionStore with = make();
    with.addStatic(filter("static"));
    with.addStatic(FilterCollectionRecord{"all", "all", "All", {filter("static").key}});
    with.load();
    EXPECT_EQ(with.state().subscriptions.size(), 1u);
    SubscriptionStore without = make();
    without.load();
    EXPECT_EQ(without.state().subscriptions.size(), 0u);
}

TEST_F(SubscriptionStoreTest, HoldsItsLimits)
{
    SubscriptionStore store = make({2, 2, 1});
    store.add(filter("1"));
    store.add(filter("2"));
    EXPECT_EQ(refusal([&] { store.add(filter("3")); }).first, CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED);
    store.add(destination("1"));
    store.add(destination("2"));
    EXPECT_EQ(refusal([&] { store.add(destination("3")); }).first, CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED);
    store.add(subscription("1", "1"));
    EXPECT_EQ(refusal([&] { store.add(subscription("1", "2")); }).first, CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED);
    EXPECT_EQ(store.state().filters.size() + store.state().destinations.size() + store.state().subscriptions.size(),
              5u);
}

TEST_F(SubscriptionStoreTest, KeepsTheOldFileWhenItIsStoppedBeforeTheNewOneIsInPlace)
{
    SubscriptionStore store = make();
    store.add(filter("f"));
    const std::string before = content(file());
    store.file().setBeforeRename([] { throw std::runtime_error("power cut"); });
    EXPECT_THROW(store.add(filter("g")), std::runtime_error);
    EXPECT_EQ(content(file()), before);
    EXPECT_THAT(names(_directory.path()), ElementsAre("indications.json", "indications.json.new"));
    EXPECT_EQ(store.findFilter(filter("g").key), nullptr);

    SubscriptionStore after = make();
    after.load();
    EXPECT_NE(after.findFilter(filter("f").key), nullptr);
    EXPECT_EQ(after.findFilter(filter("g").key), nullptr);
    after.add(filter("g"));
    EXPECT_THAT(names(_directory.path()), ElementsAre("indications.json"));
}

TEST_F(SubscriptionStoreTest, ChangesNothingWhenTheFileCannotBeWritten)
{
    SubscriptionStore store = make();
    store.add(filter("f"));
    std::filesystem::create_directory(_directory.path() / "indications.json.new");
    EXPECT_EQ(refusal([&] { store.add(filter("g")); }).first, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(refusal([&] { store.removeFilter(filter("f").key); }).first, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(store.state().filters.size(), 1u);
}

TEST_F(SubscriptionStoreTest, PutsABrokenFileAsideAndNeverOverwritesIt)
{
    for (int round = 1; round <= 2; ++round) {
        put(file(), "{\"version\": 1,\n  broken" + std::to_string(round));
        SubscriptionStore store = make();
        store.load();
        EXPECT_EQ(store.state().filters.size(), 0u);
        store.add(filter("f"));
    }
    EXPECT_EQ(content(_directory.path() / "indications.json.broken-1"), "{\"version\": 1,\n  broken1");
    EXPECT_EQ(content(_directory.path() / "indications.json.broken-2"), "{\"version\": 1,\n  broken2");
}

namespace {

std::string complaint(const std::string& text)
{
    try {
        readStateText(text);
    } catch (const StateTextError& error) {
        return error.what();
    }
    return "none";
}

} // namespace

TEST(StateText, NamesThePlaceOfAMistake)
{
    EXPECT_THAT(complaint("{\n  \"version\": 1,\n  oops}"), HasSubstr("line 3, column 3"));
    EXPECT_THAT(complaint(""), HasSubstr("line 1, column 1"));
    EXPECT_THAT(complaint("[]"), HasSubstr("/: must be an object"));
    EXPECT_THAT(complaint("{}"), HasSubstr("/version: is missing"));
    EXPECT_THAT(complaint("{\"version\": 2}"), HasSubstr("/version: is not a version"));
    EXPECT_THAT(complaint("{\"version\": \"1\"}"), HasSubstr("/version: must be a number"));
    EXPECT_THAT(complaint("{\"version\": 1, \"filters\": {}}"), HasSubstr("/filters: must be a list"));
    EXPECT_THAT(complaint("{\"version\": 1, \"filters\": [5]}"), HasSubstr("/filters/0: must be an object"));
    EXPECT_THAT(complaint("{\"version\": 1, \"filters\": [{\"key\": {\"class\": 1}}]}"),
                HasSubstr("/filters/0/key/systemClass: is missing"));
}

// Each member in turn is given a value that it cannot have, or is taken away.
TEST(StateText, ChecksEveryMember)
{
    SubscriptionState state;
    state.filters.push_back(filter("f"));
    state.destinations.push_back(destination("d"));
    state.subscriptions.push_back(subscription("f", "d"));
    const auto whole = nlohmann::json::parse(stateText(state));
    ASSERT_EQ(complaint(whole.dump()), "none");
    unsigned tried = 0;
    const auto flat = whole.flatten();
    for (const auto& [place, value] : flat.items()) {
        auto changed = whole;
        changed[nlohmann::json::json_pointer(place)] = nullptr;
        EXPECT_NE(complaint(changed.dump()), "none") << place;
        changed[nlohmann::json::json_pointer(place)] = {{"x", -1}};
        EXPECT_NE(complaint(changed.dump()), "none") << place;
        ++tried;
    }
    EXPECT_GT(tried, 30u);
    auto twice = whole;
    twice["filters"].push_back(whole["filters"][0]);
    EXPECT_THAT(complaint(twice.dump()), HasSubstr("/filters/1: has the keys"));
    for (const char* place : {"/destinations/0/persistence", "/subscriptions/0/policy"}) {
        auto changed = whole;
        changed[nlohmann::json::json_pointer(place)] = 9;
        EXPECT_THAT(complaint(changed.dump()), HasSubstr("out of range"));
    }
}

TEST(StateText, WritesTextsThatAreNotUtf8)
{
    SubscriptionState state;
    state.filters.push_back(filter("f\xff"));
    EXPECT_EQ(readStateText(stateText(state)).filters[0].key.name, "f\xef\xbf\xbd");
}
