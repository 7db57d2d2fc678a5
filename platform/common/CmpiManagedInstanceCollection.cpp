#include "common/CmpiManagedInstanceCollection.h"

#include "common/AssociationWalk.h"
#include "common/CollectionIndex.h"
#include "common/KDVUtil.h"

#include <algorithm>
#include <utility>

using namespace CmpiCpp;
namespace KDV {
namespace {

void returnInstance(CmpiManagedInstance& object, const CmpiInstanceResult& result)
{
    result.returnInstance(object.getInstance()); // released as soon as it was returned
}

// The first visible association with this path.
std::uint32_t firstAssociationAt(const CollectionIndex& index, const CmpiObjectPath& path)
{
    for (const std::uint32_t id : index.associationsNamed(path))
        if (index.isVisible(id) && index.object(id).getPath() == path) return id;
    return CollectionIndex::none;
}

} // namespace

CmpiManagedInstanceCollection::CmpiManagedInstanceCollection(const Logger& logger)
    : _logger(logger), _index(std::make_unique<CollectionIndex>())
{
}

CmpiManagedInstanceCollection::~CmpiManagedInstanceCollection() = default;

void CmpiManagedInstanceCollection::createInstance(CmpiManagedInstance* instance)
{
    _index->add(std::unique_ptr<CmpiManagedInstance>(instance));
}

void CmpiManagedInstanceCollection::reserve(std::size_t objects) { _index->reserve(objects); }

std::size_t CmpiManagedInstanceCollection::size() const noexcept { return _index->size(); }

void CmpiManagedInstanceCollection::refreshed() { _index->refreshed(); }

void CmpiManagedInstanceCollection::cleanup()
{
    const std::size_t before = _index->size();
    _index->cleanup();
    _logger.info("cleanup() disposed of %zu of %zu objects", before - _index->size(), before);
}

void CmpiManagedInstanceCollection::enumInstanceNames(const CmpiObjectPathResult& result, const CmpiContext&,
                                                      const CmpiObjectPath& classPath)
{
    for (const std::uint32_t id : _index->ofClass(classPath.getClassName()))
        result.returnObjectPath(_index->object(id).getPath());
}

void CmpiManagedInstanceCollection::enumInstances(const CmpiInstanceResult& result, const CmpiContext&,
                                                  const CmpiObjectPath& classPath, const char* const* properties)
{
    const PropertyList wanted(properties);
    for (const std::uint32_t id : _index->ofClass(classPath.getClassName()))
        returnInstance(_index->object(id), result);
}

bool CmpiManagedInstanceCollection::getInstance(const CmpiInstanceResult& result, const CmpiContext&,
                                                const CmpiObjectPath& path, const char* const* properties)
{
    // One class publishes either instances or associations; should it do both, the first in order counts.
    const std::uint32_t id = std::min(firstVisibleAt(*_index, path), firstAssociationAt(*_index, path));
    if (id == CollectionIndex::none) return false;
    const PropertyList wanted(properties);
    returnInstance(_index->object(id), result);
    return true;
}

void CmpiManagedInstanceCollection::associators(const CmpiInstanceResult& result, const CmpiContext&,
                                                const CmpiObjectPath& path, const CmpiName& associationClass,
                                                const CmpiName& resultClass, const CmpiName& role,
                                                const CmpiName& resultRole, const char* const* properties)
{
    const PropertyList wanted(properties);
    const AssociationFilter filter{associationClass, resultClass, role, resultRole};
    AssociationWalk walk(*_index, path, filter);
    walk.forEach([&](std::uint32_t association, const CmpiObjectPath& other) {
        const std::uint32_t publisher = walk.publisher(association, other);
        if (publisher != CollectionIndex::none)
            returnInstance(_index->object(publisher), result);
        else // Published by somebody else, who is not asked: the lock of the provider is held.
            result.returnInstance(makeCmpiInstance(KDVUtil::getBroker(), other));
    });
}

void CmpiManagedInstanceCollection::associatorNames(const CmpiObjectPathResult& result, const CmpiContext&,
                                                    const CmpiObjectPath& path, const CmpiName& associationClass,
                                                    const CmpiName& resultClass, const CmpiName& role,
                                                    const CmpiName& resultRole)
{
    const AssociationFilter filter{associationClass, resultClass, role, resultRole};
    AssociationWalk(*_index, path, filter).forEach([&](std::uint32_t, CmpiObjectPath other) {
        result.returnObjectPath(std::move(other));
    });
}

void CmpiManagedInstanceCollection::references(const CmpiInstanceResult& result, const CmpiContext&,
                                               const CmpiObjectPath& path, const CmpiName& resultClass,
                                               const CmpiName& role, const char* const* properties)
{
    const PropertyList wanted(properties);
    const AssociationFilter filter{resultClass, CmpiName(""), role, CmpiName("")};
    AssociationWalk(*_index, path, filter).forEach([&](std::uint32_t association, const CmpiObjectPath&) {
        returnInstance(_index->object(association), result);
    });
}

void CmpiManagedInstanceCollection::referenceNames(const CmpiObjectPathResult& result, const CmpiContext&,
                                                   const CmpiObjectPath& path, const CmpiName& resultClass,
                                                   const CmpiName& role)
{
    const AssociationFilter filter{resultClass, CmpiName(""), role, CmpiName("")};
    AssociationWalk(*_index, path, filter).forEach([&](std::uint32_t association, const CmpiObjectPath&) {
        result.returnObjectPath(_index->object(association).getPath());
    });
}

} // namespace KDV
