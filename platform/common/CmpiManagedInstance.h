// An object that publishes one CIM instance: it makes its path and its instance on demand from data that it points to.
// Made by a provider and owned by the CmpiManagedInstanceCollection from then on; read and changed only under the
// provider's lock. Failures of the broker pass through as CmpiStatus.
//
// Key sources: an object whose path depends on bytes that can change tells the collection which, in its constructor,
// with keysReadFrom. The collection finds objects by path without asking them all, and compares these bytes after each
// refresh to know which paths moved. An object that declares none has a path that never changes.
#pragma once

#include "cmpicpp/CmpiArgs.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiResults.h"
#include "common/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace CmpiCpp {
class CmpiContext;
}

namespace KDV {

class CollectionIndex;
struct DeclaredKeySources;

class KDV_COMMON_API CmpiManagedInstance {
public:
    explicit CmpiManagedInstance(const std::string& className);
    CmpiManagedInstance(const CmpiManagedInstance&) = delete;
    CmpiManagedInstance& operator=(const CmpiManagedInstance&) = delete;
    virtual ~CmpiManagedInstance();

    virtual CmpiCpp::CmpiObjectPath getPath() const = 0;
    virtual CmpiCpp::CmpiInstance getInstance() = 0;
    virtual void invokeMethod(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiName& method,
                              const CmpiCpp::CmpiArgs& arguments, const CmpiCpp::CmpiMethodResult& result);
    virtual const std::string& getClassName() const;

    // A hidden instance is served by nothing and is disposed of by the collection's next cleanup.
    void setVisible(bool visible) noexcept;
    bool isVisible() const noexcept { return _visible; }

protected:
    // The path depends on these bytes, which must stay readable for the life of the object. A class names each field
    // that its keys read; a field of a record is passed with its size. Throws std::logic_error once the object was
    // handed to its collection.
    void keysReadFrom(const void* bytes, std::size_t count);

private:
    friend class CollectionIndex;

    const std::string* _className;                   // kept once for all objects of the class
    CollectionIndex* _index = nullptr;               // of the collection that owns the object
    std::unique_ptr<DeclaredKeySources> _keySources; // until then
    std::uint32_t _id = 0;                           // in that index
    bool _visible = true;
};

} // namespace KDV
