// What a collection knows about its objects so that a request looks at those only that can be in its answer. An
// object's id is its place in the order of creation. Path nodes are found by fingerprint: a node holds the instances
// with that path and the associations that touch it, in groups of equal association class, roles and class of the other
// end, so that a filter drops whole groups. Equal fingerprints only make an object a candidate; who uses the index
// compares.
//
// Belongs to one CmpiManagedInstanceCollection, owns its objects, not locked. About a hundred bytes an object.
#pragma once

#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/ClassTable.h"
#include "common/CmpiManagedInstance.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "common/IdList.h"
#include "common/KeySources.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace KDV {

using Ids = std::vector<std::uint32_t>;

struct AssociationFilter {
    CmpiCpp::CmpiName associationClass{""};
    CmpiCpp::CmpiName resultClass{""};
    CmpiCpp::CmpiName role{""};
    CmpiCpp::CmpiName resultRole{""};
};

// A key of an association's path: the role and the path of the end that it names, both lent by the path. A key that is
// no reference has a null path.
struct ReferenceKey {
    const CMPIObjectPath* path;
    CmpiCpp::CmpiName role;
};

std::vector<ReferenceKey> referenceKeysOf(const CmpiCpp::CmpiObjectPath& path);

class CollectionIndex {
public:
    static constexpr std::uint32_t none = 0xffffffffu;
    using End = CmpiManagedInstanceAssociation::End;

    CollectionIndex() = default;
    CollectionIndex(const CollectionIndex&) = delete;
    CollectionIndex& operator=(const CollectionIndex&) = delete;
    ~CollectionIndex(); // associations first

    void add(std::unique_ptr<CmpiManagedInstance> object);
    void reserve(std::size_t objects);
    std::size_t size() const noexcept { return _live; }
    void setVisible(std::uint32_t id, bool visible) noexcept;
    void refreshed();
    void cleanup();

    CmpiManagedInstance& object(std::uint32_t id) const noexcept { return *_entries[id].object; }
    CmpiManagedInstanceAssociation& association(std::uint32_t id) const noexcept;
    bool isVisible(std::uint32_t id) const noexcept { return !(_hidden[id / 64] >> id % 64 & 1); }
    bool isLoose(std::uint32_t id) const noexcept { return _entries[id].kind == Kind::looseAssociation; }

    // Visible objects of the class or below, in order.
    Ids ofClass(const CmpiCpp::CmpiName& className);
    // Is the object's class the asked one or below it?
    bool isA(std::uint32_t id, const CmpiCpp::CmpiName& asked);
    bool isA(const CmpiCpp::CmpiObjectPath& path, const CmpiCpp::CmpiName& asked);

    // Node of the instances and associations whose path, or end's path, may be this one.
    std::uint32_t findNode(const CmpiCpp::CmpiObjectPath& path) const;
    const IdList& instancesAt(std::uint32_t node) const noexcept { return _nodes[node].instances; }
    // Associations that touch the node and pass the filter, and those that have to be asked, in order.
    Ids associationsAt(std::uint32_t node, const AssociationFilter& filter);
    // Associations of the class (by name) that may have this path, and those that have to be asked, in order.
    Ids associationsNamed(const CmpiCpp::CmpiObjectPath& path) const;

    std::uint32_t nodeOfFirstEnd(std::uint32_t id) const noexcept { return _entries[id].first; }
    std::uint32_t nodeOfSecondEnd(std::uint32_t id) const noexcept { return _entries[id].second; }
    // The id of an end's instance; none for a fixed path.
    std::uint32_t idOf(const End& end) const noexcept;

private:
    enum class Kind : std::uint8_t { gone, instance, association, looseAssociation };

    struct Entry {
        CmpiManagedInstance* object;
        std::uint32_t first;  // instance: its node; association: the node of its first end
        std::uint32_t second; // instance: its key sources; association: the node of its second end
        ClassNumber classNumber;
        Kind kind;
    };

    struct GroupKey {
        ClassNumber associationClass;
        ClassNumber otherClass; // class of the other end
        std::uint16_t role;     // the role that names this node
        std::uint16_t otherRole;
        bool operator==(const GroupKey& o) const noexcept
        {
            return associationClass == o.associationClass && otherClass == o.otherClass && role == o.role &&
                   otherRole == o.otherRole;
        }
    };

    struct Group {
        GroupKey key{};
        std::uint32_t next = none; // of the same node, or of the free ones
        IdList associations;
    };

    struct Node {
        std::uint64_t fingerprint = 0;
        std::uint32_t next = none; // in the same bucket, or of the free ones
        std::uint32_t groups = none;
        IdList instances;
    };

    // An association's place in one of its two nodes.
    struct Link {
        std::uint32_t id;
        std::uint32_t end;         // 0 or 1: which of its ends the node stands for
        std::uint64_t fingerprint; // of the node
        GroupKey key;
    };

    // nodes and groups
    std::uint32_t findNode(std::uint64_t fingerprint) const noexcept;
    std::uint32_t nodeFor(std::uint64_t fingerprint);
    void dropNodeIfEmpty(std::uint32_t node) noexcept;
    void growBuckets();
    std::uint32_t groupFor(std::uint32_t node, const GroupKey& key);
    void dropGroupIfEmpty(std::uint32_t node, std::uint32_t group) noexcept;
    std::size_t bucketOf(std::uint64_t fingerprint) const noexcept;
    std::uint16_t roleNumber(const char* role);
    bool groupPasses(const GroupKey& key, const AssociationFilter& filter);

    // objects
    void enter(std::uint32_t id);
    void enterInstance(Entry& entry, std::uint32_t id);
    void enterAssociation(Entry& entry, std::uint32_t id);
    void withdraw(std::uint32_t id) noexcept;
    bool declaresEnds(const CmpiManagedInstanceAssociation& association) const noexcept;
    std::uint32_t nodeOfEnd(const End& end);
    ClassNumber classOfEnd(const End& end);
    ClassNumber classOf(const CmpiCpp::CmpiObjectPath& path);
    GroupKey keyOf(std::uint32_t id, std::uint32_t end);
    void learnNameSpace(ClassNumber number, const CmpiCpp::CmpiName& asked);
    bool isClassA(ClassNumber number, const CmpiCpp::CmpiName& asked);
    void addNamed(Ids& ids, ClassNumber number, const CmpiCpp::CmpiObjectPath& path) const;

    // changes
    struct Move;
    struct Place;
    std::vector<Move> moves() const;
    std::vector<Link> linksAfter(const std::vector<Move>& moved, const Ids& associations);
    Ids associationsOf(const Ids& instances) const;
    std::vector<Place> groupsOf(const Ids& associations) const;
    void leaveGroups(const std::vector<Place>& places);
    void leaveNodes(const Ids& instances);
    void joinNodes(const std::vector<Move>& moved);
    void joinGroups(const std::vector<Link>& links);
    Ids hiddenIds() const;
    void addLooseOnes(Ids& dying) const;
    void removeFromLists(const Ids& ids);
    void dispose(const Ids& ids) noexcept;
    void closeGaps();

    std::vector<Entry> _entries;
    std::vector<std::uint64_t> _hidden; // a bit an object
    std::size_t _live = 0;
    std::deque<Node> _nodes;
    std::vector<std::uint32_t> _buckets;
    std::uint32_t _freeNodes = none;
    std::size_t _nodesInUse = 0;
    std::deque<Group> _groups;
    std::uint32_t _freeGroups = none;
    std::vector<std::string> _roles;
    ClassTable _classes;
    KeySources _sources;
    IdList _loose; // associations that do not declare their ends or whose ends are no instances of this collection
};

} // namespace KDV
