// Owns every managed instance and association of a provider and answers its read operations from them. Not locked: all
// calls come under the provider's lock.
//
// Answers are those of a plain walk over all visible objects in order of creation, but a request looks only at objects
// that can be in its answer: enumeration at the instances of the classes asked for, getInstance at those with the
// path's fingerprint, association requests at the associations that touch the path, grouped by association class, role
// and class of the other end so that a filter drops whole groups. After the data under the instances was refreshed,
// call refreshed(): it compares the declared key sources and moves what changed its path.
#pragma once

#include "cmpicpp/CmpiContext.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiResults.h"
#include "common/CmpiManagedInstance.h"
#include "common/Export.h"
#include "logger/Logger.h"

#include <cstddef>
#include <memory>

namespace KDV {

class CollectionIndex;

class KDV_COMMON_API CmpiManagedInstanceCollection {
public:
    explicit CmpiManagedInstanceCollection(const Logger& logger);
    CmpiManagedInstanceCollection(const CmpiManagedInstanceCollection&) = delete;
    CmpiManagedInstanceCollection& operator=(const CmpiManagedInstanceCollection&) = delete;
    ~CmpiManagedInstanceCollection(); // disposes of associations first, then of instances

    // Takes ownership, also when it throws. The same object again, or none, is a std::logic_error.
    void createInstance(CmpiManagedInstance* instance);

    // Room for this many objects, known beforehand.
    void reserve(std::size_t objects);

    void enumInstanceNames(const CmpiCpp::CmpiObjectPathResult& result, const CmpiCpp::CmpiContext& context,
                           const CmpiCpp::CmpiObjectPath& classPath);
    void enumInstances(const CmpiCpp::CmpiInstanceResult& result, const CmpiCpp::CmpiContext& context,
                       const CmpiCpp::CmpiObjectPath& classPath, const char* const* properties);
    bool getInstance(const CmpiCpp::CmpiInstanceResult& result, const CmpiCpp::CmpiContext& context,
                     const CmpiCpp::CmpiObjectPath& path, const char* const* properties);
    void associators(const CmpiCpp::CmpiInstanceResult& result, const CmpiCpp::CmpiContext& context,
                     const CmpiCpp::CmpiObjectPath& path, const CmpiCpp::CmpiName& associationClass,
                     const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role,
                     const CmpiCpp::CmpiName& resultRole, const char* const* properties);
    void associatorNames(const CmpiCpp::CmpiObjectPathResult& result, const CmpiCpp::CmpiContext& context,
                         const CmpiCpp::CmpiObjectPath& path, const CmpiCpp::CmpiName& associationClass,
                         const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role,
                         const CmpiCpp::CmpiName& resultRole);
    void references(const CmpiCpp::CmpiInstanceResult& result, const CmpiCpp::CmpiContext& context,
                    const CmpiCpp::CmpiObjectPath& path, const CmpiCpp::CmpiName& resultClass,
                    const CmpiCpp::CmpiName& role, const char* const* properties);
    void referenceNames(const CmpiCpp::CmpiObjectPathResult& result, const CmpiCpp::CmpiContext& context,
                        const CmpiCpp::CmpiObjectPath& path, const CmpiCpp::CmpiName& resultClass,
                        const CmpiCpp::CmpiName& role);

    // The data that instances read was refreshed. Costs one comparison of the key sources, and a path for each object
    // whose keys changed.
    void refreshed();

    // Disposes of hidden instances and of every association one of whose ends it disposes of, in one step.
    void cleanup();

    std::size_t size() const noexcept;

private:
    Logger _logger;
    std::unique_ptr<CollectionIndex> _index;
};

} // namespace KDV
