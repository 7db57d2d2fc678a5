// The four association operations from every object of a machine, without and with each filter, against a plain walk
// over all associations that the provider enumerates.
#include "Links.h"
#include "fixture/ProviderFixture.h"
#include "harness/Schema.h"

#include <algorithm>
#include <set>

namespace KDV::Test {
namespace {

using namespace Host;
using Paths = std::vector<std::string>;

struct Link {
    std::string className;
    std::string path;
    std::string role[2];
    std::string end[2]; // path texts
};

std::string unquoted(const std::string& value)
{
    std::string text;
    for (std::size_t i = 1; i + 1 < value.size(); ++i) {
        if (value[i] == '\\') ++i;
        text += value[i];
    }
    return text;
}

bool isA(const std::string& className, const char* asked)
{
    const ClassInfo* declared = schema().find("root/vnr", className);
    const ClassInfo* wanted = schema().find("root/vnr", asked);
    return declared && wanted && declared->isA(*wanted);
}

class AssociationWalk : public ProviderFixture {
protected:
    AssociationWalk()
    {
        log.stop();
        buildGoldenMachine(machine);
        makeProvider();
        std::set<std::string> found;
        for (const std::string& className : associationClasses()) {
            for (const CollectedInstance& instance : requests().instances(className.c_str()).instances) {
                Link link{className, instance.path, {}, {}};
                int i = 0;
                for (const CollectedProperty& property : instance.properties) {
                    if (property.type != "reference") continue;
                    link.role[i] = property.name;
                    link.end[i++] = unquoted(property.value);
                }
                found.insert(link.end[0]);
                found.insert(link.end[1]);
                links.push_back(link);
            }
        }
        objects.assign(found.begin(), found.end());
    }

    // Sorted paths of the other ends, or of the associations themselves.
    Paths walk(const std::string& from, const Filters& filters, bool references) const
    {
        Paths paths;
        for (const Link& link : links) {
            for (int i = 0; i < 2; ++i) {
                const char* linkClass = references ? filters.resultClass : filters.associationClass;
                if (link.end[i] != from || (linkClass && !isA(link.className, linkClass))) continue;
                if (filters.role && link.role[i] != filters.role) continue;
                if (filters.resultRole && link.role[1 - i] != filters.resultRole) continue;
                if (!references && filters.resultClass && !isA(nameOf(link.end[1 - i]).className, filters.resultClass))
                    continue;
                paths.push_back(references ? link.path : link.end[1 - i]);
            }
        }
        std::sort(paths.begin(), paths.end());
        return paths;
    }

    static Paths sorted(Paths paths)
    {
        std::sort(paths.begin(), paths.end());
        return paths;
    }

    static Paths pathsOf(const Reply& reply)
    {
        Paths paths;
        for (const CollectedInstance& instance : reply.instances)
            paths.push_back(instance.path);
        return sorted(paths);
    }

    // A carrier firmware's property InstanceID is another one than the key of its path, and some servers take the key
    // of a returned instance from the property: such a path is compared by its class.
    static Paths byInstance(Paths paths)
    {
        for (std::string& path : paths)
            if (path.find(":KDV_SASSmartDriveCarrier") != std::string::npos) path.erase(path.find(".InstanceID"));
        return sorted(std::move(paths));
    }

    void compareAssociators(const std::string& from, const Filters& filters)
    {
        const ObjectName name = nameOf(from);
        const Paths expected = walk(from, filters, false);
        EXPECT_EQ(sorted(requests().associatorNames(name, filters).paths), expected) << from;
        EXPECT_EQ(byInstance(pathsOf(requests().associators(name, filters))), byInstance(expected)) << from;
        ++compared;
    }

    void compareReferences(const std::string& from, const Filters& filters)
    {
        const ObjectName name = nameOf(from);
        const Paths expected = walk(from, filters, true);
        EXPECT_EQ(sorted(requests().referenceNames(name, filters).paths), expected) << from;
        EXPECT_EQ(pathsOf(requests().references(name, filters)), expected) << from;
        ++compared;
    }

    std::vector<Link> links;
    Paths objects;
    std::size_t compared = 0;
};

TEST_P(AssociationWalk, AgreesWithoutFilters)
{
    EXPECT_GT(objects.size(), 50u);
    for (const std::string& object : objects) {
        compareAssociators(object, {});
        compareReferences(object, {});
        EXPECT_FALSE(walk(object, {}, false).empty()) << object; // nothing stands alone
    }
    EXPECT_EQ(compared, 2 * objects.size());
}

TEST_P(AssociationWalk, AgreesWithEachAssociationClass)
{
    std::vector<std::string> asked = associationClasses();
    for (const char* super : {"CIM_Dependency", "CIM_SystemDevice", "CIM_Component", "CIM_ElementSoftwareIdentity"})
        asked.emplace_back(super);
    for (const std::string& object : objects) {
        for (const std::string& className : asked) {
            compareAssociators(object, {className.c_str(), nullptr, nullptr, nullptr});
            compareReferences(object, {nullptr, className.c_str(), nullptr, nullptr});
        }
    }
}

TEST_P(AssociationWalk, AgreesWithEachRole)
{
    std::set<std::string> roles{"Nobody"};
    for (const Link& link : links)
        roles.insert(link.role, link.role + 2);
    for (const std::string& object : objects) {
        for (const std::string& role : roles) {
            compareAssociators(object, {nullptr, nullptr, role.c_str(), nullptr});
            compareAssociators(object, {nullptr, nullptr, nullptr, role.c_str()});
            compareReferences(object, {nullptr, nullptr, role.c_str(), nullptr});
        }
    }
}

TEST_P(AssociationWalk, AgreesWithEachResultClass)
{
    std::set<std::string> classes{"CIM_ManagedElement", "CIM_LogicalDevice", "CIM_StoragePool"};
    for (const std::string& object : objects)
        classes.insert(nameOf(object).className);
    for (const std::string& object : objects)
        for (const std::string& className : classes)
            compareAssociators(object, {nullptr, className.c_str(), nullptr, nullptr});
}

TEST_P(AssociationWalk, AgreesWithAllFiltersAtOnce)
{
    for (const Link& link : links) {
        for (int i = 0; i < 2; ++i) {
            const std::string result = nameOf(link.end[1 - i]).className;
            compareAssociators(
                link.end[i], {link.className.c_str(), result.c_str(), link.role[i].c_str(), link.role[1 - i].c_str()});
        }
    }
}

TEST_P(AssociationWalk, ReachesEveryObjectFromTheFirstArraySystem)
{
    std::set<std::string> reached;
    Paths waiting{walk(objects.front(), {}, false).front()};
    while (!waiting.empty()) {
        const std::string object = waiting.back();
        waiting.pop_back();
        if (!reached.insert(object).second) continue;
        for (const std::string& next : requests().associatorNames(nameOf(object)).paths)
            waiting.push_back(next);
    }
    EXPECT_EQ(reached, std::set<std::string>(objects.begin(), objects.end()));
}

KDV_UNDER_EVERY_BROKER(AssociationWalk);

} // namespace
} // namespace KDV::Test
