// What a request costs, counted in questions to objects: it depends on the answer, not on how many objects there are.
#include "Model.h"
#include "common/KDVUtil.h"

#include <map>

#include <gtest/gtest.h>

using namespace CmpiCpp;
namespace KDV {
namespace {

// Ten small machines: a system with eight disks each, and as many further disks as asked for, on a system of their own.
class Machine {
public:
    explicit Machine(std::size_t objects) : _collection(Logger("test")), _client(_model, _collection)
    {
        const Host::RequestScope scope(_model.broker(), modelNameSpace);
        _records.reserve(objects + 16);
        _collection.reserve(objects);
        for (int i = 0; i < 4; ++i)
            _small = addSystem("small" + std::to_string(i), 8);
        const StandIn* large = addSystem("large", 0);
        while (_collection.size() + 1 < objects)
            addDisk(large);
        _collection.createInstance(new StandIn(_asked, "T_Outside", record("lonely"), "lonely"));
    }

    // Questions by request.
    std::map<std::string, std::size_t> costs()
    {
        std::map<std::string, std::size_t> asked;
        const CmpiObjectPath small = _small->getPath();
        const CmpiObjectPath disk = _disk->getPath();
        const CmpiObjectPath link = _link->getPath();
        const CmpiObjectPath nothing = Model::path("T_Disk", "nothing");
        const auto count = [&](const std::string& name, std::size_t expected, auto request) {
            request(); // what is learned once per class is learned now
            _asked = {};
            EXPECT_EQ(request().size(), expected) << name;
            asked[name] = _asked.sum();
        };
        count("get a system", 1, [&] { return _client.get(small); });
        count("get a disk", 1, [&] { return _client.get(disk); });
        count("get an association", 1, [&] { return _client.get(link); });
        count("get nothing", 0, [&] { return _client.get(nothing); });
        count("associators of a system", 8, [&] { return _client.associators(small); });
        count("associators of a disk", 1, [&] { return _client.associators(disk); });
        count("associator names", 8, [&] { return _client.associatorNames(small, {"T_Link", "T_Disk", "Left", ""}); });
        count("another class", 0, [&] { return _client.associatorNames(small, {"T_Part", "", "", ""}); });
        count("another role", 0, [&] { return _client.associatorNames(small, {"", "", "Right", ""}); });
        count("references", 8, [&] { return _client.references(small); });
        count("reference names of a disk", 1, [&] { return _client.referenceNames(disk); });
        count("enumerate what is rare", 1, [&] { return _client.enumerate("T_Outside"); });
        return asked;
    }

private:
    const KeyRecord& record(const std::string& id)
    {
        _records.emplace_back();
        setText(_records.back().id, sizeof(KeyRecord::id), id);
        return _records.back();
    }

    const StandIn* addSystem(const std::string& id, int disks)
    {
        auto* system = new StandIn(_asked, "T_System", record(id), id);
        _collection.createInstance(system);
        for (int i = 0; i < disks; ++i)
            addDisk(system);
        return system;
    }

    void addDisk(const StandIn* system)
    {
        const std::string id = std::to_string(++_disks);
        _disk = new StandIn(_asked, "T_Disk", record(id), id);
        _collection.createInstance(const_cast<StandIn*>(_disk));
        auto* link = new StandInLink(_asked, LinkKind::declared, "T_Link", {"Left", system, nullptr},
                                     {"Right", _disk, nullptr}, id);
        _collection.createInstance(link);
        _link = link;
    }

    Model _model;
    Asked _asked;
    std::vector<KeyRecord> _records; // does not move: reserved
    CmpiManagedInstanceCollection _collection;
    Client _client;
    const StandIn* _small = nullptr;
    const StandIn* _disk = nullptr;
    const StandInLink* _link = nullptr;
    int _disks = 0;
};

TEST(CollectionCost, OfARequestIsTheSameAt100AndAt50000Objects)
{
    std::map<std::string, std::size_t> small;
    {
        small = Machine(100).costs();
    }
    const std::map<std::string, std::size_t> large = Machine(50000).costs();
    EXPECT_EQ(small, large);
    EXPECT_EQ(small.at("get nothing"), 0u);
    EXPECT_EQ(small.at("another role"), 0u);
    EXPECT_LE(small.at("get a disk"), 3u);
}

TEST(CollectionCost, OfTakingAnObjectIsOnePathForAnInstanceAndNoneForAnAssociation)
{
    Model model;
    Asked asked;
    KeyRecord record;
    CmpiManagedInstanceCollection collection{Logger("test")};
    auto* a = new StandIn(asked, "T_Disk", record, "a");
    auto* b = new StandIn(asked, "T_Disk", record, "b");
    collection.createInstance(a);
    collection.createInstance(b);
    EXPECT_EQ(asked.paths, 2u);
    collection.createInstance(
        new StandInLink(asked, LinkKind::declared, "T_Link", {"Left", a, nullptr}, {"Right", b, nullptr}, "l"));
    EXPECT_EQ(asked.sum(), 2u);
}

TEST(CollectionCost, OfClassRelationsIsOneQuestionToTheBroker)
{
    Model model;
    Asked asked;
    KeyRecord record;
    CmpiManagedInstanceCollection collection{Logger("test")};
    for (int i = 0; i < 50; ++i)
        collection.createInstance(new StandIn(asked, "T_Disk", record, "a"));
    Client client(model, collection);
    EXPECT_EQ(client.enumerateNames("T_Base").size(), 50u);
    model.broker().resetStatistics();
    EXPECT_EQ(client.enumerateNames("T_Base").size(), 50u);
    const Host::BrokerStatistics statistics = model.broker().statistics();
    EXPECT_EQ(statistics.of(statistics.made, Host::ObjectKind::ObjectPath),
              50u); // those of the answer, none to ask with
}

} // namespace
} // namespace KDV
