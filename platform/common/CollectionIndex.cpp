#include "common/CollectionIndex.h"

#include "cmpicpp/CmpiStatus.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

using namespace CmpiCpp;
namespace KDV {

CollectionIndex::~CollectionIndex()
{
    // Nobody changes visibility any more; the rest of the index goes as a whole.
    for (const bool associations : {true, false})
        for (const Entry& entry : _entries)
            if (entry.kind != Kind::gone && associations == (entry.kind != Kind::instance))
                std::unique_ptr<CmpiManagedInstance>(entry.object).reset();
}

CmpiManagedInstanceAssociation& CollectionIndex::association(std::uint32_t id) const noexcept
{
    return static_cast<CmpiManagedInstanceAssociation&>(*_entries[id].object);
}

std::uint32_t CollectionIndex::idOf(const End& end) const noexcept { return end.instance ? end.instance->_id : none; }

void CollectionIndex::reserve(std::size_t objects)
{
    _entries.reserve(objects);
    _hidden.reserve(objects / 64 + 1);
    while (_buckets.size() < objects / 2)
        growBuckets();
}

void CollectionIndex::setVisible(std::uint32_t id, bool visible) noexcept
{
    const std::uint64_t bit = std::uint64_t{1} << id % 64;
    if (visible)
        _hidden[id / 64] &= ~bit;
    else
        _hidden[id / 64] |= bit;
}

void CollectionIndex::add(std::unique_ptr<CmpiManagedInstance> object)
{
    if (!object) throw std::invalid_argument("no object to add to a collection");
    if (object->_index) {
        object.release(); // has its owner
        throw std::logic_error("an object is added to a collection twice");
    }
    if (_entries.size() >= none - 1) throw std::length_error("too many objects in a collection");
    const auto id = static_cast<std::uint32_t>(_entries.size());
    _hidden.resize(id / 64 + 1);
    _entries.push_back({object.get(), none, none, ClassTable::unknown, Kind::gone});
    try {
        enter(id);
    } catch (...) {
        withdraw(id);
        _entries.pop_back();
        throw;
    }
    object->_index = this;
    object->_id = id;
    object->_keySources.reset();
    setVisible(id, object->_visible);
    object.release();
    ++_live;
}

void CollectionIndex::enter(std::uint32_t id)
{
    Entry& entry = _entries[id];
    const auto* const association = dynamic_cast<const CmpiManagedInstanceAssociation*>(entry.object);
    if (!association) {
        entry.kind = Kind::instance;
        enterInstance(entry, id);
        return;
    }
    entry.kind = declaresEnds(*association) ? Kind::association : Kind::looseAssociation;
    const ClassNumber number = _classes.number(association->getClassName());
    _classes[number].objects.append(id);
    ++_classes[number].associations;
    entry.classNumber = number;
    if (entry.kind == Kind::looseAssociation)
        _loose.append(id);
    else
        enterAssociation(entry, id);
}

void CollectionIndex::enterInstance(Entry& entry, std::uint32_t id)
{
    const CmpiObjectPath path = entry.object->getPath();
    const ClassNumber number = _classes.number(entry.object->getClassName());
    if (_classes[number].nameSpace.empty()) _classes[number].nameSpace = path.getNameSpace();
    _classes[number].objects.append(id);
    entry.classNumber = number;
    entry.first = nodeFor(path.fingerprint());
    _nodes[entry.first].instances.append(id);
    entry.second = _sources.add(id, entry.object->_keySources.get());
}

void CollectionIndex::enterAssociation(Entry& entry, std::uint32_t id)
{
    const GroupKey firstKey = keyOf(id, 0);
    const GroupKey secondKey = keyOf(id, 1);
    entry.first = nodeOfEnd(association(id).firstEnd());
    entry.second = nodeOfEnd(association(id).secondEnd());
    _groups[groupFor(entry.first, firstKey)].associations.append(id);
    _groups[groupFor(entry.second, secondKey)].associations.append(id);
}

// Takes back what enter did before it failed.
void CollectionIndex::withdraw(std::uint32_t id) noexcept
{
    Entry& entry = _entries[id];
    if (entry.classNumber != ClassTable::unknown) {
        _classes[entry.classNumber].objects.erase(&id, &id + 1);
        if (entry.kind != Kind::instance) --_classes[entry.classNumber].associations;
    }
    _loose.erase(&id, &id + 1);
    for (const std::uint32_t node : {entry.first, entry.kind == Kind::association ? entry.second : none}) {
        if (node == none) continue;
        _nodes[node].instances.erase(&id, &id + 1);
        for (std::uint32_t group = _nodes[node].groups; group != none;) {
            const std::uint32_t next = _groups[group].next;
            _groups[group].associations.erase(&id, &id + 1);
            dropGroupIfEmpty(node, group);
            group = next;
        }
    }
    if (entry.first != none) dropNodeIfEmpty(entry.first);
    if (entry.kind == Kind::association && entry.second != none && entry.second != entry.first)
        dropNodeIfEmpty(entry.second);
}

bool CollectionIndex::declaresEnds(const CmpiManagedInstanceAssociation& association) const noexcept
{
    for (const End* end : {&association.firstEnd(), &association.secondEnd()}) {
        if (!end->role || (!end->instance && !end->path)) return false;
        if (end->instance && (end->instance->_index != this || _entries[end->instance->_id].kind != Kind::instance))
            return false;
    }
    return true;
}

std::uint32_t CollectionIndex::nodeOfEnd(const End& end)
{
    return end.instance ? _entries[end.instance->_id].first : nodeFor(end.path->fingerprint());
}

ClassNumber CollectionIndex::classOfEnd(const End& end)
{
    return end.instance ? _entries[end.instance->_id].classNumber : classOf(*end.path);
}

ClassNumber CollectionIndex::classOf(const CmpiObjectPath& path)
{
    const ClassNumber number = _classes.number(path.getClassName());
    if (_classes[number].nameSpace.empty()) _classes[number].nameSpace = path.getNameSpace();
    return number;
}

// The group of an association in the node of one of its ends.
CollectionIndex::GroupKey CollectionIndex::keyOf(std::uint32_t id, std::uint32_t end)
{
    const End& mine = end == 0 ? association(id).firstEnd() : association(id).secondEnd();
    const End& other = end == 0 ? association(id).secondEnd() : association(id).firstEnd();
    return {_entries[id].classNumber, classOfEnd(other), roleNumber(mine.role), roleNumber(other.role)};
}

std::uint16_t CollectionIndex::roleNumber(const char* role)
{
    const CmpiName name(role);
    const auto found =
        std::find_if(_roles.begin(), _roles.end(), [&](const std::string& known) { return CmpiName(known) == name; });
    if (found == _roles.end()) {
        if (_roles.size() > 0xffff) throw std::length_error("too many roles");
        _roles.emplace_back(role);
        return static_cast<std::uint16_t>(_roles.size() - 1);
    }
    return static_cast<std::uint16_t>(found - _roles.begin());
}

std::size_t CollectionIndex::bucketOf(std::uint64_t fingerprint) const noexcept
{
    return (fingerprint * 0x9e3779b97f4a7c15u >> 32) & (_buckets.size() - 1);
}

void CollectionIndex::growBuckets()
{
    std::vector<std::uint32_t> grown(_buckets.empty() ? 64 : _buckets.size() * 2, none);
    std::swap(_buckets, grown);
    for (std::uint32_t first : grown) {
        for (std::uint32_t node = first; node != none;) {
            const std::uint32_t next = _nodes[node].next;
            std::uint32_t& bucket = _buckets[bucketOf(_nodes[node].fingerprint)];
            _nodes[node].next = bucket;
            bucket = node;
            node = next;
        }
    }
}

std::uint32_t CollectionIndex::findNode(std::uint64_t fingerprint) const noexcept
{
    if (_buckets.empty()) return none;
    std::uint32_t node = _buckets[bucketOf(fingerprint)];
    while (node != none && _nodes[node].fingerprint != fingerprint)
        node = _nodes[node].next;
    return node;
}

std::uint32_t CollectionIndex::nodeFor(std::uint64_t fingerprint)
{
    const std::uint32_t known = findNode(fingerprint);
    if (known != none) return known;
    if (_nodesInUse >= _buckets.size()) growBuckets();
    if (_freeNodes == none) {
        _nodes.emplace_back();
        _freeNodes = static_cast<std::uint32_t>(_nodes.size() - 1);
    }
    const std::uint32_t number = _freeNodes;
    Node& node = _nodes[number];
    _freeNodes = node.next;
    std::uint32_t& bucket = _buckets[bucketOf(fingerprint)];
    node.fingerprint = fingerprint;
    node.next = bucket;
    bucket = number;
    ++_nodesInUse;
    return number;
}

void CollectionIndex::dropNodeIfEmpty(std::uint32_t number) noexcept
{
    Node& node = _nodes[number];
    if (!node.instances.empty() || node.groups != none) return;
    std::uint32_t* place = &_buckets[bucketOf(node.fingerprint)];
    while (*place != none && *place != number)
        place = &_nodes[*place].next;
    if (*place == none) return; // was dropped before
    *place = node.next;
    node.next = _freeNodes;
    _freeNodes = number;
    --_nodesInUse;
}

std::uint32_t CollectionIndex::groupFor(std::uint32_t node, const GroupKey& key)
{
    for (std::uint32_t group = _nodes[node].groups; group != none; group = _groups[group].next)
        if (_groups[group].key == key) return group;
    if (_freeGroups == none) {
        _groups.emplace_back();
        _freeGroups = static_cast<std::uint32_t>(_groups.size() - 1);
    }
    const std::uint32_t number = _freeGroups;
    Group& group = _groups[number];
    _freeGroups = group.next;
    group.key = key;
    group.next = _nodes[node].groups;
    _nodes[node].groups = number;
    return number;
}

void CollectionIndex::dropGroupIfEmpty(std::uint32_t node, std::uint32_t number) noexcept
{
    if (!_groups[number].associations.empty()) return;
    std::uint32_t* place = &_nodes[node].groups;
    while (*place != none && *place != number)
        place = &_groups[*place].next;
    if (*place == none) return;
    *place = _groups[number].next;
    _groups[number].next = _freeGroups;
    _freeGroups = number;
}

} // namespace KDV
