#include "common/AssociationWalk.h"

using namespace CmpiCpp;
namespace KDV {

std::uint32_t firstVisibleAt(const CollectionIndex& index, const CmpiObjectPath& path)
{
    const std::uint32_t node = index.findNode(path);
    if (node != CollectionIndex::none)
        for (const std::uint32_t id : index.instancesAt(node))
            if (index.isVisible(id) && index.object(id).getPath() == path) return id;
    return CollectionIndex::none;
}

AssociationWalk::AssociationWalk(CollectionIndex& index, const CmpiObjectPath& given, const AssociationFilter& filter)
    : _index(index), _given(given), _filter(filter), _node(index.findNode(given))
{
}

std::optional<CmpiObjectPath> AssociationWalk::otherEnd(std::uint32_t id)
{
    const CmpiManagedInstanceAssociation& association = _index.association(id);
    if (!_index.isVisible(id) || isHidden(association.firstEnd()) || isHidden(association.secondEnd()))
        return std::nullopt;
    CmpiObjectPath other = association.getAssociatedPath(_given);
    if (other.empty() || (_index.isLoose(id) && !passes(id, other))) return std::nullopt;
    return other;
}

bool AssociationWalk::isHidden(const CollectionIndex::End& end) const
{
    return end.instance ? !end.instance->isVisible() : end.path && isHidden(*end.path);
}

// A path is hidden when the collection has instances with it, all of them hidden.
bool AssociationWalk::isHidden(const CmpiObjectPath& path) const
{
    const std::uint32_t node = _index.findNode(path);
    bool found = false;
    if (node == CollectionIndex::none) return false;
    for (const std::uint32_t id : _index.instancesAt(node)) {
        if (_index.object(id).getPath() != path) continue;
        if (_index.isVisible(id)) return false;
        found = true;
    }
    return found;
}

// The conditions that the index applies by group, for an association that it does not know by its ends.
bool AssociationWalk::passes(std::uint32_t id, const CmpiObjectPath& other)
{
    return _index.isA(id, _filter.associationClass) && _index.isA(other, _filter.resultClass) && hasRoles(id, other) &&
           !isHidden(_given) && !isHidden(other);
}

bool AssociationWalk::hasRoles(std::uint32_t id, const CmpiObjectPath& other) const
{
    if (_filter.role.empty() && _filter.resultRole.empty()) return true;
    const CmpiObjectPath path = _index.association(id).getPath();
    const std::vector<ReferenceKey> keys = referenceKeysOf(path);
    const auto names = [](const ReferenceKey& key, const CmpiName& role, const CmpiObjectPath& end) {
        return key.path && (role.empty() || role == key.role) && CmpiObjectPath::lent(key.path) == end;
    };
    for (std::size_t mine = 0; mine < keys.size(); ++mine)
        for (std::size_t theirs = 0; theirs < keys.size(); ++theirs)
            if (mine != theirs && names(keys[mine], _filter.role, _given) &&
                names(keys[theirs], _filter.resultRole, other))
                return true;
    return false;
}

std::uint32_t AssociationWalk::publisher(std::uint32_t id, const CmpiObjectPath& other) const
{
    const CmpiManagedInstanceAssociation& association = _index.association(id);
    const bool isFirst = _index.nodeOfFirstEnd(id) == _node;
    if (!_index.isLoose(id) && isFirst != (_index.nodeOfSecondEnd(id) == _node)) {
        // The common case: the other end is the first with its path, so nothing has to be looked up.
        const std::uint32_t end = _index.idOf(isFirst ? association.secondEnd() : association.firstEnd());
        const std::uint32_t node = isFirst ? _index.nodeOfSecondEnd(id) : _index.nodeOfFirstEnd(id);
        if (end != CollectionIndex::none && *_index.instancesAt(node).begin() == end) return end;
    }
    return firstVisibleAt(_index, other);
}

} // namespace KDV
