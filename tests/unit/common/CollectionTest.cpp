#include "Model.h"
#include "cmpicpp/CmpiStatus.h"
#include "common/KDVUtil.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace CmpiCpp;
using testing::ElementsAre;
using testing::IsEmpty;
namespace KDV {
namespace {

class Collection : public testing::Test {
protected:
    StandIn* add(const std::string& className, const std::string& id, const std::string& label)
    {
        records.emplace_back(new KeyRecord);
        setText(records.back()->id, sizeof records.back()->id, id);
        auto* object = new StandIn(asked, className, *records.back(), label);
        collection->createInstance(object);
        return object;
    }

    StandInLink* link(const std::string& className, const CmpiManagedInstance* first, const CmpiManagedInstance* second,
                      const std::string& label, LinkKind kind = LinkKind::declared)
    {
        const char* const role = className == "T_Part" ? "Whole" : "Left";
        auto* object =
            new StandInLink(asked, kind, className, {role, first, nullptr}, {"Right", second, nullptr}, label);
        collection->createInstance(object);
        return object;
    }

    static std::string diskPath(const std::string& id) { return "//host/root/vnr:T_Disk.Id=\"" + id + "\",Sub=\"\""; }

    Model model;
    Asked asked;
    std::vector<std::unique_ptr<KeyRecord>> records;
    std::unique_ptr<CmpiManagedInstanceCollection> collection{new CmpiManagedInstanceCollection(Logger("test"))};
    Client client{model, *collection};
};

TEST_F(Collection, EnumeratesAClassAndThoseBelowItInOrderOfCreation)
{
    add("T_Disk", "1", "a");
    add("T_System", "2", "b");
    add("T_FastDisk", "3", "c");
    add("T_Disk", "4", "d");
    EXPECT_THAT(client.enumerateNames("T_Disk"),
                ElementsAre(diskPath("1"), "//host/root/vnr:T_FastDisk.Id=\"3\",Sub=\"\"", diskPath("4")));
    EXPECT_EQ(client.enumerate("T_BASE").size(), 4u);
    EXPECT_EQ(client.enumerate("T_FastDisk").size(), 1u);
}

TEST_F(Collection, EnumeratesByNameWhereTheBrokerDoesNotKnowTheClass)
{
    add("T_Disk", "1", "a");
    EXPECT_THAT(client.enumerate("T_Nowhere"), IsEmpty());
    EXPECT_THAT(client.enumerate(""), IsEmpty());
}

TEST_F(Collection, TakesTheFirstInOrderOfEqualPaths)
{
    add("T_Disk", "1", "first");
    add("T_Disk", "1", "second");
    EXPECT_EQ(client.enumerate("T_Disk").size(), 2u);
    EXPECT_THAT(client.get(Model::path("t_DISK", "1")), ElementsAre(diskPath("1") + " \"first\""));
}

TEST_F(Collection, ServesNoHiddenInstance)
{
    StandIn* disk = add("T_Disk", "1", "a");
    add("T_Disk", "1", "b");
    disk->setVisible(false);
    EXPECT_EQ(client.enumerate("T_Disk").size(), 1u);
    EXPECT_THAT(client.get(Model::path("T_Disk", "1")), ElementsAre(diskPath("1") + " \"b\""));
    disk->setVisible(true);
    EXPECT_THAT(client.get(Model::path("T_Disk", "1")), ElementsAre(diskPath("1") + " \"a\""));
}

TEST_F(Collection, FindsAnAssociationByTheReferencesInItsPath)
{
    StandIn* system = add("T_System", "s", "s");
    StandIn* disk = add("T_Disk", "1", "d");
    StandInLink* made = link("T_Link", system, disk, "l");
    link("T_Part", system, disk, "p");
    EXPECT_EQ(client.get(made->getPath()).size(), 1u);
    CmpiObjectPath swapped = makeCmpiObjectPath(KDVUtil::getBroker(), modelNameSpace, "T_Link");
    swapped.addKey("Left", disk->getPath());
    swapped.addKey("Right", system->getPath());
    EXPECT_THAT(client.get(swapped), IsEmpty());
    made->setVisible(false);
    EXPECT_THAT(client.get(made->getPath()), IsEmpty());
}

TEST_F(Collection, FiltersByClassesAndRoles)
{
    StandIn* system = add("T_System", "s", "s");
    StandIn* disk = add("T_FastDisk", "1", "d");
    link("T_FastLink", system, disk, "l");
    link("T_Part", disk, system, "p");
    const CmpiObjectPath path = system->getPath();
    const auto count = [&](const Filter& filter) { return client.associatorNames(path, filter).size(); };
    EXPECT_EQ(count({"", "", "", ""}), 2u);
    EXPECT_EQ(count({"T_Link", "", "", ""}), 1u);
    EXPECT_EQ(count({"T_Disk", "", "", ""}), 0u);
    EXPECT_EQ(count({"", "T_Disk", "", ""}), 2u);
    EXPECT_EQ(count({"", "T_System", "", ""}), 0u);
    EXPECT_EQ(count({"", "", "left", ""}), 1u);
    EXPECT_EQ(count({"", "", "Right", ""}), 1u);
    EXPECT_EQ(count({"", "", "", "WHOLE"}), 1u);
    EXPECT_EQ(count({"", "", "Whole", ""}), 0u);
    EXPECT_EQ(client.references(path, {"T_Part", "", "Right", ""}).size(), 1u);
}

TEST_F(Collection, GivesNoAnswerOverAHiddenAssociationOrEnd)
{
    StandIn* system = add("T_System", "s", "s");
    StandIn* disk = add("T_Disk", "1", "d");
    StandInLink* made = link("T_Link", system, disk, "l");
    disk->setVisible(false);
    EXPECT_THAT(client.associators(system->getPath()), IsEmpty());
    EXPECT_THAT(client.referenceNames(disk->getPath()), IsEmpty());
    disk->setVisible(true);
    EXPECT_EQ(client.associators(system->getPath()).size(), 1u);
    made->setVisible(false);
    EXPECT_THAT(client.associators(system->getPath()), IsEmpty());
}

TEST_F(Collection, AnswersForAFixedEndThatNobodyHereServesWithItsPathAndKeys)
{
    StandIn* disk = add("T_Disk", "1", "d");
    auto fixed = std::make_unique<CmpiObjectPath>(Model::path("T_Outside", "host"));
    const CmpiObjectPath outside = *fixed;
    collection->createInstance(new StandInLink(asked, LinkKind::declared, "T_Link", {"Left", nullptr, nullptr},
                                               {"Right", disk, nullptr}, "l", std::move(fixed)));
    EXPECT_EQ(client.associators(disk->getPath()).size(), 1u);
    ASSERT_EQ(client.instances.size(), 1u);
    EXPECT_EQ(client.instances[0].className, "T_Outside");
    EXPECT_EQ(client.instances[0].value("Id"), "\"host\"");
    EXPECT_EQ(client.associatorNames(disk->getPath()), Texts{textOf(outside)});
    EXPECT_THAT(client.associators(outside), ElementsAre(diskPath("1") + " \"d\""));
    EXPECT_EQ(client.associators(disk->getPath(), {"", "T_Outside", "", "Left"}).size(), 1u);
}

TEST_F(Collection, HandsOnlyWantedPropertiesAndTheKeysToTheBroker)
{
    StandIn* system = add("T_System", "s", "s");
    StandIn* disk = add("T_Disk", "1", "d");
    link("T_Link", system, disk, "l");
    const char* const wanted[] = {"Status", nullptr};
    client.properties = wanted;
    for (const auto& ask : {std::function<void()>([&] { client.enumerate("T_Disk"); }),
                            std::function<void()>([&] { client.get(disk->getPath()); }),
                            std::function<void()>([&] { client.associators(system->getPath()); })}) {
        ask();
        ASSERT_EQ(client.instances.size(), 1u);
        EXPECT_EQ(client.instances[0].value("Status"), "2");
        EXPECT_EQ(client.instances[0].value("Label"), "absent");
        EXPECT_EQ(client.instances[0].path, diskPath("1"));
    }
}

TEST_F(Collection, CleanupDisposesOfHiddenInstancesWithTheirAssociationsFirst)
{
    StandIn* system = add("T_System", "s", "system");
    StandIn* disk = add("T_Disk", "1", "disk");
    StandIn* other = add("T_Disk", "2", "other");
    link("T_Link", system, disk, "to disk");
    link("T_Link", system, other, "to other");
    disk->setVisible(false);
    collection->cleanup();
    EXPECT_THAT(asked.destroyed, ElementsAre("to disk", "disk"));
    EXPECT_EQ(collection->size(), 3u);
    EXPECT_EQ(client.associators(system->getPath()).size(), 1u);
    collection->cleanup();
    EXPECT_EQ(collection->size(), 3u);
}

TEST_F(Collection, CleanupLeavesNoUndeclaredAssociationWithADisposedOfEnd)
{
    StandIn* early = add("T_Disk", "1", "early");
    records.emplace_back(new KeyRecord);
    auto* late = new StandIn(asked, "T_Disk", *records.back(), "late");
    link("T_Link", early, late, "made before its end was added"); // is asked one by one
    collection->createInstance(late);
    EXPECT_EQ(client.associators(early->getPath()).size(), 1u);
    late->setVisible(false);
    EXPECT_THAT(client.associators(early->getPath()), IsEmpty());
    collection->cleanup();
    EXPECT_THAT(asked.destroyed, ElementsAre("made before its end was added", "late"));
}

TEST_F(Collection, DestroysAssociationsBeforeInstances)
{
    StandIn* a = add("T_Disk", "1", "a");
    link("T_Link", a, add("T_Disk", "2", "b"), "l");
    add("T_Disk", "3", "c");
    collection.reset();
    EXPECT_THAT(asked.destroyed, ElementsAre("l", "a", "b", "c"));
}

TEST_F(Collection, RefusesNothingAndTheSameObjectTwice)
{
    StandIn* disk = add("T_Disk", "1", "a");
    EXPECT_THROW(collection->createInstance(nullptr), std::logic_error);
    EXPECT_THROW(collection->createInstance(disk), std::logic_error);
    EXPECT_EQ(collection->size(), 1u);
    EXPECT_THAT(asked.destroyed, IsEmpty());
}

class Refusing : public StandIn {
public:
    using StandIn::StandIn;
    CmpiObjectPath getPath() const override { throw CmpiStatus(CMPI_RC_ERR_FAILED, "no path"); }
};

TEST_F(Collection, DisposesOfAnObjectThatItCannotTake)
{
    records.emplace_back(new KeyRecord);
    EXPECT_THROW(collection->createInstance(new Refusing(asked, "T_Disk", *records.back(), "bad")), CmpiStatus);
    EXPECT_THAT(asked.destroyed, ElementsAre("bad"));
    EXPECT_EQ(collection->size(), 0u);
    add("T_Disk", "1", "good");
    EXPECT_EQ(client.enumerate("T_Disk").size(), 1u);
}

class LateDeclarer : public StandIn {
public:
    using StandIn::StandIn;
    void declare() { keysReadFrom("x", 1); }
};

TEST_F(Collection, TakesNoKeySourcesFromAnObjectThatItOwns)
{
    records.emplace_back(new KeyRecord);
    auto* object = new LateDeclarer(asked, "T_Disk", *records.back(), "late");
    collection->createInstance(object);
    EXPECT_THROW(object->declare(), std::logic_error);
}

TEST(CmpiManagedInstance, NamesTheMethodThatItDoesNotHave)
{
    Model model;
    Asked asked;
    const KeyRecord record;
    StandIn disk(asked, "T_Disk", record, "d");
    try {
        disk.invokeMethod(CmpiContext(nullptr), "Format", CmpiArgs(nullptr, nullptr), CmpiMethodResult(nullptr));
        FAIL() << "the method was taken";
    } catch (const CmpiStatus& status) {
        EXPECT_EQ(status.code(), CMPI_RC_ERR_METHOD_NOT_AVAILABLE);
        EXPECT_STREQ(status.str(), "T_Disk has no method Format");
    }
}

} // namespace
} // namespace KDV
