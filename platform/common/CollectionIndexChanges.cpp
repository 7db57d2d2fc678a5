// How the index follows refreshed data and hidden objects. Every step first gathers what it will change, sorted by the
// list that it is taken from, so that thousands of changes cost one pass over each list.
#include "common/CollectionIndex.h"

#include <algorithm>
#include <memory>
#include <utility>

using namespace CmpiCpp;
namespace KDV {

// An instance whose path became another one.
struct CollectionIndex::Move {
    std::uint32_t id;
    std::uint64_t fingerprint;
};

// An id in a list: of a class, a node or a group.
struct CollectionIndex::Place {
    std::uint32_t list;
    std::uint32_t id;
    std::uint32_t node; // of a group
    bool operator<(const Place& o) const noexcept { return list != o.list ? list < o.list : id < o.id; }
};

namespace {

// Calls change(place, first id, last id) for each run of places of one list; the places are sorted.
template <class Places, class Change>
void forEachList(const Places& places, Change change)
{
    Ids ids;
    ids.reserve(places.size());
    for (const auto& place : places)
        ids.push_back(place.id);
    for (std::size_t i = 0; i < places.size();) {
        std::size_t end = i;
        while (end < places.size() && places[end].list == places[i].list)
            ++end;
        change(places[i], ids.data() + i, ids.data() + end);
        i = end;
    }
}

} // namespace

std::vector<CollectionIndex::Move> CollectionIndex::moves() const
{
    std::vector<Move> moved;
    for (const std::uint32_t id : _sources.changed()) {
        const std::uint64_t fingerprint = object(id).getPath().fingerprint();
        if (fingerprint != _nodes[_entries[id].first].fingerprint) moved.push_back({id, fingerprint});
    }
    return moved;
}

// Associations that have one of these instances, ascending, as an end.
Ids CollectionIndex::associationsOf(const Ids& instances) const
{
    Ids nodes;
    for (const std::uint32_t id : instances)
        nodes.push_back(_entries[id].first);
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    const auto isOneOf = [&](const End& end) {
        return end.instance && std::binary_search(instances.begin(), instances.end(), end.instance->_id);
    };
    Ids found;
    for (const std::uint32_t node : nodes)
        for (std::uint32_t group = _nodes[node].groups; group != none; group = _groups[group].next)
            for (const std::uint32_t id : _groups[group].associations)
                if (isOneOf(association(id).firstEnd()) || isOneOf(association(id).secondEnd())) found.push_back(id);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<CollectionIndex::Place> CollectionIndex::groupsOf(const Ids& associations) const
{
    std::vector<Place> places;
    for (const std::uint32_t id : associations) {
        const Entry& entry = _entries[id];
        if (entry.kind != Kind::association) continue;
        for (const std::uint32_t node : {entry.first, entry.second}) {
            for (std::uint32_t group = _nodes[node].groups; group != none; group = _groups[group].next)
                if (_groups[group].key.associationClass == entry.classNumber &&
                    _groups[group].associations.contains(id))
                    places.push_back({group, id, node});
            if (entry.first == entry.second) break;
        }
    }
    std::sort(places.begin(), places.end());
    return places;
}

void CollectionIndex::leaveGroups(const std::vector<Place>& places)
{
    forEachList(places, [this](const Place& place, const std::uint32_t* first, const std::uint32_t* last) {
        _groups[place.list].associations.erase(first, last);
        dropGroupIfEmpty(place.node, place.list);
        dropNodeIfEmpty(place.node);
    });
}

void CollectionIndex::leaveNodes(const Ids& instances)
{
    std::vector<Place> places;
    for (const std::uint32_t id : instances)
        if (_entries[id].kind == Kind::instance) places.push_back({_entries[id].first, id, none});
    std::sort(places.begin(), places.end());
    forEachList(places, [this](const Place& place, const std::uint32_t* first, const std::uint32_t* last) {
        _nodes[place.list].instances.erase(first, last);
        dropNodeIfEmpty(place.list);
    });
}

void CollectionIndex::joinNodes(const std::vector<Move>& moved)
{
    std::vector<Place> places;
    for (const Move& move : moved) {
        _entries[move.id].first = nodeFor(move.fingerprint);
        places.push_back({_entries[move.id].first, move.id, none});
    }
    std::sort(places.begin(), places.end());
    forEachList(places, [this](const Place& place, const std::uint32_t* first, const std::uint32_t* last) {
        _nodes[place.list].instances.merge(first, last);
    });
}

void CollectionIndex::joinGroups(const std::vector<Link>& links)
{
    std::vector<Place> places;
    for (const Link& link : links) {
        Entry& entry = _entries[link.id];
        std::uint32_t& node = link.end == 0 ? entry.first : entry.second;
        node = nodeFor(link.fingerprint);
        places.push_back({groupFor(node, link.key), link.id, node});
    }
    std::sort(places.begin(), places.end());
    forEachList(places, [this](const Place& place, const std::uint32_t* first, const std::uint32_t* last) {
        _groups[place.list].associations.merge(first, last);
    });
}

// Where associations belong once their ends moved. Asks the broker, so it comes before the first change.
std::vector<CollectionIndex::Link> CollectionIndex::linksAfter(const std::vector<Move>& moved, const Ids& associations)
{
    std::vector<Link> links;
    for (const std::uint32_t id : associations) {
        for (const std::uint32_t end : {0u, 1u}) {
            const std::uint32_t instance = idOf(end == 0 ? association(id).firstEnd() : association(id).secondEnd());
            const auto move = std::lower_bound(moved.begin(), moved.end(), instance,
                                               [](const Move& m, std::uint32_t wanted) { return m.id < wanted; });
            const std::uint32_t node = end == 0 ? _entries[id].first : _entries[id].second;
            const bool hasMoved = move != moved.end() && move->id == instance;
            links.push_back({id, end, hasMoved ? move->fingerprint : _nodes[node].fingerprint, keyOf(id, end)});
        }
    }
    return links;
}

void CollectionIndex::refreshed()
{
    _classes.askAgain();
    const std::vector<Move> moved = moves();
    if (!moved.empty()) {
        Ids instances;
        for (const Move& move : moved)
            instances.push_back(move.id);
        const Ids associations = associationsOf(instances);
        const std::vector<Link> links = linksAfter(moved, associations);
        leaveGroups(groupsOf(associations));
        leaveNodes(instances);
        joinNodes(moved);
        joinGroups(links);
    }
    _sources.accept();
}

Ids CollectionIndex::hiddenIds() const
{
    Ids ids;
    for (std::size_t word = 0; word < _hidden.size(); ++word)
        for (std::uint64_t bits = _hidden[word]; bits != 0; bits &= bits - 1)
            ids.push_back(static_cast<std::uint32_t>(word * 64 + static_cast<unsigned>(__builtin_ctzll(bits))));
    return ids;
}

// Those of the associations that are asked one by one which have a dying end; an association can itself be an end.
void CollectionIndex::addLooseOnes(Ids& dying) const
{
    const auto dies = [&](const End& end) {
        return end.instance && end.instance->_index == this &&
               std::binary_search(dying.begin(), dying.end(), end.instance->_id);
    };
    for (bool found = true; found;) {
        found = false;
        for (const std::uint32_t id : _loose) {
            const auto place = std::lower_bound(dying.begin(), dying.end(), id);
            if (place != dying.end() && *place == id) continue;
            if (dies(association(id).firstEnd()) || dies(association(id).secondEnd())) {
                dying.insert(place, id);
                found = true;
            }
        }
    }
}

void CollectionIndex::cleanup()
{
    Ids dying = hiddenIds();
    if (dying.empty()) return;
    Ids instances;
    for (const std::uint32_t id : dying)
        if (_entries[id].kind == Kind::instance) instances.push_back(id);
    const Ids associations = associationsOf(instances);
    dying.insert(dying.end(), associations.begin(), associations.end());
    std::sort(dying.begin(), dying.end());
    dying.erase(std::unique(dying.begin(), dying.end()), dying.end());
    addLooseOnes(dying);
    removeFromLists(dying);
    dispose(dying);
    closeGaps();
}

void CollectionIndex::removeFromLists(const Ids& ids)
{
    std::vector<Place> classes;
    std::vector<KeySources::Leaving> sources;
    for (const std::uint32_t id : ids) {
        const Entry& entry = _entries[id];
        classes.push_back({entry.classNumber, id, none});
        if (entry.kind == Kind::instance) sources.push_back({id, entry.second});
    }
    std::sort(classes.begin(), classes.end());
    leaveGroups(groupsOf(ids));
    leaveNodes(ids);
    _sources.remove(sources);
    _loose.erase(ids.data(), ids.data() + ids.size());
    forEachList(classes, [this](const Place& place, const std::uint32_t* first, const std::uint32_t* last) {
        _classes[static_cast<ClassNumber>(place.list)].objects.erase(first, last);
    });
}

void CollectionIndex::dispose(const Ids& ids) noexcept
{
    for (const bool associations : {true, false}) {
        for (const std::uint32_t id : ids) {
            Entry& entry = _entries[id];
            if (entry.kind == Kind::gone || associations == (entry.kind == Kind::instance)) continue;
            if (associations) --_classes[entry.classNumber].associations;
            entry.kind = Kind::gone;
            setVisible(id, true);
            --_live;
            std::unique_ptr<CmpiManagedInstance>(std::exchange(entry.object, nullptr)).reset();
        }
    }
}

// Numbers the objects anew, in their order, when most numbers have none any more.
void CollectionIndex::closeGaps()
{
    constexpr std::size_t worthIt = 256;
    if (_entries.size() - _live <= _live + worthIt) return;
    Ids renumbered(_entries.size(), none);
    std::vector<Entry> entries;
    entries.reserve(_live);
    std::vector<std::uint64_t> hidden(_live / 64 + 1); // none is: the hidden ones were just disposed of
    for (std::size_t id = 0; id < _entries.size(); ++id) {
        if (_entries[id].kind == Kind::gone) continue;
        renumbered[id] = static_cast<std::uint32_t>(entries.size());
        entries.push_back(_entries[id]);
    }
    for (std::size_t i = 0; i < _classes.size(); ++i)
        _classes[static_cast<ClassNumber>(i)].objects.renumber(renumbered.data());
    for (Node& node : _nodes)
        node.instances.renumber(renumbered.data());
    for (Group& group : _groups)
        group.associations.renumber(renumbered.data());
    _loose.renumber(renumbered.data());
    _sources.renumber(renumbered.data());
    _entries.swap(entries);
    _hidden.swap(hidden);
    for (std::uint32_t id = 0; id < _entries.size(); ++id)
        _entries[id].object->_id = id;
}

} // namespace KDV
