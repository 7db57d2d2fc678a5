// The collection against the plain walk over all objects: thousands of random worlds and requests.
#include "Walk.h"
#include "common/KDVUtil.h"

#include <algorithm>
#include <cctype>
#include <deque>
#include <random>

#include <gtest/gtest.h>

using namespace CmpiCpp;
namespace KDV {
namespace {

const Texts instanceClasses = {"T_Base", "T_Disk", "T_FastDisk", "T_System", "T_Outside"};
const Texts linkClasses = {"T_Link", "T_FastLink", "T_Part", "T_Tagged"};
const Texts askedClasses = {"",           "",           "",         "T_Base",    "T_Disk",
                            "t_disk",     "T_FastDisk", "T_SYSTEM", "T_Outside", "T_Link",
                            "T_FastLink", "t_LINK",     "T_Part",   "T_Tagged",  "T_Nowhere"};
const Texts askedRoles = {"", "", "", "Left", "LEFT", "Right", "Whole", "Nobody"};

class RandomWorld {
public:
    RandomWorld(Model& model, unsigned seed)
        : _model(model), _random(seed), _collection(Logger("test")), _client(model, _collection)
    {
        const unsigned ids = 1 + pick(12); // few ids make equal paths likely
        for (unsigned i = 0; i < ids; ++i)
            _ids.push_back("id" + std::to_string(i));
    }

    void run(unsigned steps)
    {
        for (unsigned i = 0; i < 6; ++i)
            addInstance();
        for (unsigned i = 0; i < steps && !testing::Test::HasFatalFailure(); ++i) {
            step();
            ASSERT_EQ(_collection.size(), _walk.objects.size());
        }
    }

private:
    unsigned pick(unsigned below) { return std::uniform_int_distribution<unsigned>(0, below - 1)(_random); }
    const std::string& pick(const Texts& texts) { return texts[pick(static_cast<unsigned>(texts.size()))]; }

    void step()
    {
        switch (pick(24)) {
        case 0:
        case 1:
        case 2:
            addInstance();
            break;
        case 3:
        case 4:
        case 5:
        case 6:
            addLink();
            break;
        case 7:
        case 8:
            changeVisibility();
            break;
        case 9:
            changeKeys();
            break;
        case 10:
            cleanUp();
            break;
        default:
            ask();
        }
    }

    void addInstance()
    {
        if (_records.size() < 8 || pick(4) != 0) _records.emplace_back();
        KeyRecord& record = _records[pick(static_cast<unsigned>(_records.size()))]; // several objects read one record
        if (record.id[0] == '\0') fill(record);
        const std::string label = "i" + std::to_string(++_labels);
        auto* object = new StandIn(_asked, pick(instanceClasses), record, label);
        const bool hidden = pick(12) == 0;
        if (hidden) object->setVisible(false);
        _collection.createInstance(object);
        _walk.objects.push_back({object, nullptr, label});
    }

    void fill(KeyRecord& record)
    {
        setText(record.id, sizeof record.id, pick(_ids));
        setText(record.sub, sizeof record.sub, pick(3) == 0 ? "s" : "");
    }

    const CmpiManagedInstance* someInstance()
    {
        std::vector<const CmpiManagedInstance*> instances;
        for (const Walk::Object& o : _walk.objects)
            if (!o.link) instances.push_back(o.object);
        return instances.empty() ? nullptr : instances[pick(static_cast<unsigned>(instances.size()))];
    }

    void addLink()
    {
        const std::string& className = pick(linkClasses);
        const bool isTagged = className == "T_Tagged";
        const LinkKind kind = isTagged ? LinkKind::tagged : pick(5) == 0 ? LinkKind::undeclared : LinkKind::declared;
        StandInLink::End ends[2];
        ends[0].role = className == "T_Part" ? "Whole" : "Left";
        ends[1].role = "Right";
        ends[0].instance = someInstance();
        ends[1].instance = someInstance();
        if (!ends[0].instance) return;
        std::unique_ptr<CmpiObjectPath> fixed;
        if (pick(5) == 0) {
            ends[pick(2)].instance = nullptr;
            fixed = std::make_unique<CmpiObjectPath>(
                Model::path(pick(3) == 0 ? pick(instanceClasses) : "T_Outside", pick(_ids)));
        }
        if (pick(2) == 0) std::swap(ends[0], ends[1]);
        const std::string label = "a" + std::to_string(++_labels);
        auto* link = new StandInLink(_asked, kind, className, ends[0], ends[1], label, std::move(fixed));
        _collection.createInstance(link);
        _walk.objects.push_back({link, link, label});
    }

    void changeVisibility()
    {
        const auto count = static_cast<unsigned>(_walk.objects.size());
        for (unsigned changes = count / 8; changes > 0; --changes)
            _walk.objects[pick(count)].object->setVisible(pick(3) == 0 && count < 40);
    }

    void changeKeys()
    {
        for (unsigned changes = 1 + pick(4); changes > 0; --changes)
            fill(_records[pick(static_cast<unsigned>(_records.size()))]);
        _collection.refreshed();
    }

    void cleanUp()
    {
        // Links that do not declare their ends would be left with none.
        for (Walk::Object& o : _walk.objects)
            if (o.link && !o.link->declares())
                for (const StandInLink::End& end : {o.link->first(), o.link->second()})
                    if (end.instance && !end.instance->isVisible()) o.object->setVisible(false);
        const std::vector<std::string> expected = _walk.survivors();
        _collection.cleanup();
        std::vector<Walk::Object> left;
        for (const Walk::Object& o : _walk.objects)
            if (std::find(expected.begin(), expected.end(), o.label) != expected.end()) left.push_back(o);
        _walk.objects = std::move(left);
        ASSERT_EQ(_collection.size(), expected.size());
    }

    // A path as clients give it: with and without host and namespace, in other letters, of things that are not there.
    CmpiObjectPath somePath()
    {
        const CmpiManagedInstance* const instance = pick(6) == 0 ? nullptr : someInstance();
        if (!instance) return Model::path(pick(instanceClasses), pick(4) == 0 ? "nothing" : pick(_ids), "");
        CmpiObjectPath path = instance->getPath();
        switch (pick(6)) {
        case 0:
            return Model::path(path.getClassName(), path.keyText("Id"), path.keyText("Sub"), "");
        case 1:
            return Model::path(path.getClassName(), path.keyText("Id"), path.keyText("Sub"), "ROOT/vnr");
        case 2:
            path.setHost("elsewhere");
            break;
        case 3:
            return otherLetters(path);
        case 4:
            return Model::path(path.getClassName(), path.keyText("Id") + "x", path.keyText("Sub"));
        default:
            break;
        }
        return path;
    }

    static CmpiObjectPath otherLetters(const CmpiObjectPath& path)
    {
        std::string className = path.getClassName();
        for (char& c : className)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        CmpiObjectPath other = makeCmpiObjectPath(KDVUtil::getBroker(), modelNameSpace, className);
        other.addKey("SUB", path.keyText("Sub")); // and in another order
        other.addKey("id", path.keyText("Id"));
        return other;
    }

    CmpiObjectPath someLinkPath()
    {
        std::vector<const StandInLink*> links;
        for (const Walk::Object& o : _walk.objects)
            if (o.link) links.push_back(o.link);
        if (links.empty()) return somePath();
        const StandInLink& link = *links[pick(static_cast<unsigned>(links.size()))];
        CmpiObjectPath path = link.getPath();
        if (pick(3) == 0) return path;
        // The same keys in the other order, or one end another one.
        CmpiObjectPath other =
            makeCmpiObjectPath(KDVUtil::getBroker(), pick(3) == 0 ? "" : modelNameSpace, link.getClassName());
        other.addKey(link.second().role, pick(6) == 0 ? somePath() : StandInLink::pathOf(link.second()));
        other.addKey(pick(8) == 0 ? link.second().role : link.first().role, StandInLink::pathOf(link.first()));
        if (link.getClassName() == "T_Tagged") other.addKey("Tag", pick(4) == 0 ? "other" : "t");
        return other;
    }

    void ask()
    {
        const Host::RequestScope scope(_model.broker(), modelNameSpace);
        const CmpiObjectPath path = pick(4) == 0 ? someLinkPath() : somePath();
        const Filter filter{pick(askedClasses), pick(askedClasses), pick(askedRoles), pick(askedRoles)};
        const std::string& className = pick(askedClasses);
        const std::string trace = path.str() + " " + filter.associationClass + "," + filter.resultClass + "," +
                                  filter.role + "," + filter.resultRole;
        SCOPED_TRACE(trace);
        switch (pick(4)) {
        case 0:
            if (className.empty()) break;
            ASSERT_EQ(_client.enumerate(className), _walk.enumerate(className)) << className;
            ASSERT_EQ(_client.enumerateNames(className), _walk.enumerateNames(className)) << className;
            break;
        case 1:
            ASSERT_EQ(_client.get(path), _walk.get(path));
            break;
        case 2:
            ASSERT_EQ(_client.associators(path, filter), _walk.associators(path, filter));
            ASSERT_EQ(_client.associatorNames(path, filter), _walk.associatorNames(path, filter));
            break;
        default:
            ASSERT_EQ(_client.references(path, filter), _walk.references(path, filter));
            ASSERT_EQ(_client.referenceNames(path, filter), _walk.referenceNames(path, filter));
        }
    }

    Model& _model;
    std::mt19937 _random;
    Asked _asked;
    std::deque<KeyRecord> _records;
    Texts _ids;
    unsigned _labels = 0;
    Walk _walk;
    CmpiManagedInstanceCollection _collection;
    Client _client;
};

TEST(CmpiManagedInstanceCollection, AnswersLikeAWalkOverAllObjectsInRandomWorlds)
{
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE("world " + std::to_string(seed));
        Model model;
        RandomWorld(model, seed).run(200);
        if (HasFatalFailure()) return;
        ASSERT_TRUE(model.broker().statistics().lifetimesClean());
    }
}

// Long lives bring the index to number its objects anew again and again.
TEST(CmpiManagedInstanceCollection, AnswersLikeAWalkThroughALongLife)
{
    Model model;
    RandomWorld world(model, 4711);
    world.run(4000);
    EXPECT_TRUE(model.broker().statistics().lifetimesClean());
}

} // namespace
} // namespace KDV
