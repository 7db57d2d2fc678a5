// What requests ask the index.
#include "cmpicpp/CmpiStatus.h"
#include "common/CollectionIndex.h"

#include <algorithm>

using namespace CmpiCpp;
namespace KDV {
namespace {

// Ids that came from several lists, each ascending.
Ids inOrder(Ids ids)
{
    if (!std::is_sorted(ids.begin(), ids.end())) std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

} // namespace

std::vector<ReferenceKey> referenceKeysOf(const CmpiObjectPath& path)
{
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPICount count = path.raw()->ft->getKeyCount(path.raw(), &status);
    throwIfFailed(status, "getKeyCount");
    std::vector<ReferenceKey> keys;
    for (CMPICount i = 0; i < count; ++i) {
        CMPIString* name = nullptr;
        const CMPIData key = path.raw()->ft->getKeyAt(path.raw(), i, &name, &status);
        throwIfFailed(status, "getKeyAt");
        if (key.type != CMPI_ref || !key.value.ref || !name) {
            keys.push_back({nullptr, CmpiName("")});
            continue;
        }
        const char* const role = name->ft->getCharPtr(name, &status);
        throwIfFailed(status, "getCharPtr");
        keys.push_back({key.value.ref, CmpiName(role)});
    }
    return keys;
}

// The broker is asked about a class in the class's own namespace.
void CollectionIndex::learnNameSpace(ClassNumber number, const CmpiName& asked)
{
    ClassTable::Class& itsClass = _classes[number];
    if (!itsClass.nameSpace.empty() || itsClass.objects.empty() || _classes.isAnswerKnown(number, asked)) return;
    itsClass.nameSpace = object(*itsClass.objects.begin()).getPath().getNameSpace();
}

bool CollectionIndex::isClassA(ClassNumber number, const CmpiName& asked)
{
    learnNameSpace(number, asked);
    return _classes.isA(number, asked);
}

bool CollectionIndex::isA(std::uint32_t id, const CmpiName& asked) { return isClassA(_entries[id].classNumber, asked); }

bool CollectionIndex::isA(const CmpiObjectPath& path, const CmpiName& asked)
{
    return asked.empty() || isClassA(classOf(path), asked);
}

Ids CollectionIndex::ofClass(const CmpiName& className)
{
    Ids ids;
    if (className.empty()) return ids;
    for (std::size_t i = 0; i < _classes.size(); ++i) {
        const auto number = static_cast<ClassNumber>(i);
        if (_classes[number].objects.empty() || !isClassA(number, className)) continue;
        for (const std::uint32_t id : _classes[number].objects)
            if (isVisible(id)) ids.push_back(id);
    }
    return inOrder(std::move(ids));
}

std::uint32_t CollectionIndex::findNode(const CmpiObjectPath& path) const { return findNode(path.fingerprint()); }

bool CollectionIndex::groupPasses(const GroupKey& key, const AssociationFilter& filter)
{
    return (filter.role.empty() || filter.role == CmpiName(_roles[key.role])) &&
           (filter.resultRole.empty() || filter.resultRole == CmpiName(_roles[key.otherRole])) &&
           isClassA(key.associationClass, filter.associationClass) && isClassA(key.otherClass, filter.resultClass);
}

Ids CollectionIndex::associationsAt(std::uint32_t node, const AssociationFilter& filter)
{
    Ids ids(_loose.begin(), _loose.end());
    if (node == none) return ids;
    for (std::uint32_t group = _nodes[node].groups; group != none; group = _groups[group].next) {
        const IdList& members = _groups[group].associations;
        if (groupPasses(_groups[group].key, filter)) ids.insert(ids.end(), members.begin(), members.end());
    }
    return inOrder(std::move(ids));
}

// Of the two ends the one with fewer associations of the class leads to them: a disk is in one such association, its
// array system in thousands.
void CollectionIndex::addNamed(Ids& ids, ClassNumber number, const CmpiObjectPath& path) const
{
    const std::vector<ReferenceKey> keys = referenceKeysOf(path);
    if (keys.size() != 2 || !keys[0].path || !keys[1].path) return;
    const std::uint32_t nodes[2] = {findNode(CmpiObjectPath::lent(keys[0].path)),
                                    findNode(CmpiObjectPath::lent(keys[1].path))};
    if (nodes[0] == none || nodes[1] == none) return;
    std::vector<const IdList*> groups[2];
    std::size_t sizes[2] = {0, 0};
    for (const unsigned i : {0u, 1u}) {
        for (std::uint32_t group = _nodes[nodes[i]].groups; group != none; group = _groups[group].next) {
            const GroupKey& key = _groups[group].key;
            if (key.associationClass != number || keys[i].role != CmpiName(_roles[key.role]) ||
                keys[1 - i].role != CmpiName(_roles[key.otherRole]))
                continue;
            groups[i].push_back(&_groups[group].associations);
            sizes[i] += _groups[group].associations.size();
        }
    }
    for (const IdList* group : groups[sizes[0] <= sizes[1] ? 0 : 1])
        for (const std::uint32_t id : *group)
            if ((_entries[id].first == nodes[0] && _entries[id].second == nodes[1]) ||
                (_entries[id].first == nodes[1] && _entries[id].second == nodes[0]))
                ids.push_back(id);
}

Ids CollectionIndex::associationsNamed(const CmpiObjectPath& path) const
{
    Ids ids;
    const ClassNumber number = _classes.find(path.getClassName());
    if (number == ClassTable::unknown || _classes[number].associations == 0) return ids;
    for (const std::uint32_t id : _loose)
        if (_entries[id].classNumber == number) ids.push_back(id);
    addNamed(ids, number, path);
    return inOrder(std::move(ids));
}

} // namespace KDV
