#include "Model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace CmpiCpp;
using testing::IsEmpty;
namespace KDV {
namespace {

struct Refresh : testing::Test {
    StandIn* add(const std::string& className, const KeyRecord& record)
    {
        auto* object = new StandIn(asked, className, record, "o");
        collection.createInstance(object);
        return object;
    }

    Model model;
    Asked asked;
    KeyRecord first;
    KeyRecord second;
    CmpiManagedInstanceCollection collection{Logger("test")};
    Client client{model, collection};
};

TEST_F(Refresh, FindsObjectsAndTheirAssociationsUnderTheirNewPaths)
{
    setText(first.id, sizeof first.id, "old");
    StandIn* disk = add("T_Disk", first);
    StandIn* system = add("T_System", second);
    collection.createInstance(
        new StandInLink(asked, LinkKind::declared, "T_Link", {"Left", system, nullptr}, {"Right", disk, nullptr}, "l"));
    setText(first.id, sizeof first.id, "new");
    collection.refreshed();
    EXPECT_THAT(client.get(Model::path("T_Disk", "old")), IsEmpty());
    EXPECT_EQ(client.get(Model::path("T_Disk", "new")).size(), 1u);
    EXPECT_EQ(client.associators(Model::path("T_Disk", "new")).size(), 1u);
    EXPECT_EQ(client.associators(system->getPath()).size(), 1u);
    EXPECT_THAT(client.associators(Model::path("T_Disk", "old")), IsEmpty());
}

TEST_F(Refresh, AsksNobodyForAPathWhenNoKeyChanged)
{
    for (int i = 0; i < 100; ++i)
        add("T_Disk", i % 2 ? first : second);
    asked = {};
    collection.refreshed();
    EXPECT_EQ(asked.sum(), 0u);
    setText(second.sub, sizeof second.sub, "x");
    collection.refreshed();
    EXPECT_EQ(asked.paths, 50u);
    collection.refreshed();
    EXPECT_EQ(asked.paths, 50u);
}

TEST_F(Refresh, KeepsTheOrderOfCreationWhenPathsBecomeEqual)
{
    setText(first.id, sizeof first.id, "a");
    setText(second.id, sizeof second.id, "b");
    KeyRecord third;
    setText(third.id, sizeof third.id, "b");
    auto* one = new StandIn(asked, "T_Disk", first, "one");
    auto* two = new StandIn(asked, "T_Disk", second, "two");
    auto* three = new StandIn(asked, "T_Disk", third, "three");
    for (StandIn* object : {one, two, three})
        collection.createInstance(object);
    setText(first.id, sizeof first.id, "b");
    collection.refreshed();
    ASSERT_EQ(client.get(Model::path("T_Disk", "b")).size(), 1u);
    EXPECT_EQ(client.instances[0].value("Label"), "\"one\"");
    one->setVisible(false);
    collection.cleanup();
    ASSERT_EQ(client.get(Model::path("T_Disk", "b")).size(), 1u);
    EXPECT_EQ(client.instances[0].value("Label"), "\"two\"");
}

TEST_F(Refresh, FollowsThousandsOfChangesAndDisposalsAtOnce)
{
    std::vector<std::unique_ptr<KeyRecord>> records;
    std::vector<StandIn*> disks;
    StandIn* system = add("T_System", first);
    for (int i = 0; i < 3000; ++i) {
        records.emplace_back(new KeyRecord); // equal paths at first: no serial numbers yet
        disks.push_back(add("T_Disk", *records.back()));
        collection.createInstance(new StandInLink(asked, LinkKind::declared, "T_Link", {"Left", system, nullptr},
                                                  {"Right", disks.back(), nullptr}, "l"));
    }
    EXPECT_EQ(client.associatorNames(Model::path("T_Disk", "")).size(), 3000u);
    for (int i = 0; i < 3000; ++i)
        setText(records[static_cast<unsigned>(i)]->id, sizeof(KeyRecord::id), std::to_string(i));
    collection.refreshed();
    EXPECT_EQ(client.associatorNames(Model::path("T_Disk", "1234")).size(), 1u);
    EXPECT_THAT(client.associatorNames(Model::path("T_Disk", "")), IsEmpty());
    for (int i = 0; i < 3000; i += 2)
        disks[static_cast<unsigned>(i)]->setVisible(false);
    collection.cleanup();
    EXPECT_EQ(collection.size(), 3001u);
    EXPECT_EQ(client.associatorNames(system->getPath()).size(), 1500u);
}

} // namespace
} // namespace KDV
