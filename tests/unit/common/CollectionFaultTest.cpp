// Every call of the broker fails once, at every place: requests end with the broker's code, and the collection answers
// as before afterwards.
#include "Walk.h"
#include "cmpicpp/CmpiStatus.h"

#include <gtest/gtest.h>

using namespace CmpiCpp;
namespace KDV {
namespace {

struct Fault : testing::Test {
    Fault()
    {
        setText(diskRecord.id, sizeof diskRecord.id, "disk");
        setText(systemRecord.id, sizeof systemRecord.id, "system");
        disk = add(new StandIn(asked, "T_Disk", diskRecord, "disk"));
        system = add(new StandIn(asked, "T_System", systemRecord, "system"));
        link(LinkKind::declared, "T_Link", nullptr);
        link(LinkKind::undeclared, "T_Part", nullptr);
        link(LinkKind::tagged, "T_Tagged", nullptr);
        link(LinkKind::declared, "T_Link", std::make_unique<CmpiObjectPath>(Model::path("T_Outside", "out")));
    }

    StandIn* add(StandIn* object)
    {
        collection.createInstance(object);
        walk.objects.push_back({object, nullptr, object->label()});
        return object;
    }

    void link(LinkKind kind, const std::string& className, std::unique_ptr<CmpiObjectPath> fixed)
    {
        const char* const role = className == "T_Part" ? "Whole" : "Left";
        const StandInLink::End first{role, fixed ? nullptr : system, nullptr};
        auto* object = new StandInLink(asked, kind, className, first, {"Right", disk, nullptr},
                                       "l" + std::to_string(walk.objects.size()), std::move(fixed));
        collection.createInstance(object);
        walk.objects.push_back({object, object, object->label()});
    }

    // Runs the action with the first, second, ... call failing until all go well; gives how often it failed.
    template <class Action>
    unsigned failEverywhere(Action action)
    {
        unsigned failures = 0;
        for (std::uint64_t n = 1;; ++n) {
            model.broker().failAfter(n, CMPI_RC_ERR_FAILED);
            try {
                const Host::RequestScope scope(model.broker(), modelNameSpace);
                action();
            } catch (const CmpiStatus& status) {
                ++failures;
                EXPECT_EQ(status.code(), CMPI_RC_ERR_FAILED);
            }
            const bool fired = model.broker().faultFired();
            model.broker().failAfter(0, CMPI_RC_OK);
            if (!fired) return failures;
            compare();
            if (HasFailure()) return failures;
        }
    }

    void compare()
    {
        const Host::RequestScope scope(model.broker(), modelNameSpace);
        for (const CmpiManagedInstance* object : {disk, system}) {
            const CmpiObjectPath path = object->getPath();
            ASSERT_EQ(client.get(path), walk.get(path));
            ASSERT_EQ(client.associators(path, {"", "T_Base", "", ""}), walk.associators(path, {"", "T_Base", "", ""}));
            ASSERT_EQ(client.references(path, {}), walk.references(path, {}));
        }
        for (const Walk::Object& o : walk.objects) {
            const CmpiObjectPath path = o.object->getPath();
            ASSERT_EQ(client.get(path), walk.get(path));
        }
        ASSERT_EQ(client.enumerate("T_Base"), walk.enumerate("T_Base"));
    }

    Model model;
    Asked asked;
    KeyRecord diskRecord;
    KeyRecord systemRecord;
    CmpiManagedInstanceCollection collection{Logger("test")};
    Client client{model, collection};
    Walk walk;
    StandIn* disk = nullptr;
    StandIn* system = nullptr;
};

TEST_F(Fault, InARequestReachesTheClientAndHarmsNothing)
{
    const CmpiObjectPath path = system->getPath();
    const CmpiObjectPath linkPath = walk.objects[2].object->getPath();
    EXPECT_GT(failEverywhere([&] { client.enumerate("T_Disk"); }), 3u);
    EXPECT_GT(failEverywhere([&] { client.get(linkPath); }), 3u);
    EXPECT_GT(failEverywhere([&] { client.associators(path); }), 3u);
    EXPECT_GT(failEverywhere([&] { client.referenceNames(path); }), 3u);
    EXPECT_TRUE(model.broker().statistics().lifetimesClean());
}

TEST_F(Fault, DuringARefreshLeavesTheRefreshToBeDoneAgain)
{
    unsigned failures = 0;
    for (unsigned n = 1; n == 1 || failures == n - 1; ++n) {
        setText(diskRecord.id, sizeof diskRecord.id, "disk" + std::to_string(n));
        model.broker().failAfter(n, CMPI_RC_ERR_FAILED);
        try {
            collection.refreshed();
        } catch (const CmpiStatus&) {
            ++failures;
        }
        model.broker().failAfter(0, CMPI_RC_OK);
        collection.refreshed();
        compare();
        ASSERT_FALSE(HasFailure()) << "call " << n;
    }
    EXPECT_GT(failures, 3u);
}

TEST_F(Fault, WhileAnObjectIsTakenDisposesOfItAndHarmsNothing)
{
    KeyRecord record;
    const std::size_t before = collection.size();
    const unsigned failures = failEverywhere([&] {
        collection.createInstance(new StandIn(asked, "T_Disk", record, "new"));
        walk.objects.push_back({nullptr, nullptr, "new"});
    });
    EXPECT_GT(failures, 3u);
    EXPECT_EQ(asked.destroyed.size(), failures);
    EXPECT_EQ(collection.size(), before + 1);
}

} // namespace
} // namespace KDV
