// An instance under construction. Made from a path, whose keys it sets as properties (not every server does); a later
// addProperty of the same name replaces the value. While a PropertyList is in force, properties that nobody asked for
// are not handed to the broker, keys always are. Owned: released by the destructor, so return it first.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiArray.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/Export.h"

#include <cstdint>
#include <string>

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiInstance {
public:
    CmpiInstance(CMPIInstance* raw, const char* const* wanted) noexcept; // takes the object over
    CmpiInstance(CmpiInstance&& other) noexcept;
    CmpiInstance(const CmpiInstance&) = delete;
    CmpiInstance& operator=(const CmpiInstance&) = delete;
    CmpiInstance& operator=(CmpiInstance&&) = delete;
    ~CmpiInstance();

    // Would addProperty hand this property on? Lets a caller skip the making of a costly value.
    bool wants(const CmpiName& name) const noexcept { return !_wanted || isListed(name); }

    // The C++ type chooses the CIM type, so it must be exactly the class's. Throws CmpiStatus when the broker refuses.
    void addProperty(const CmpiName& name, bool value);
    void addProperty(const CmpiName& name, std::uint8_t value);
    void addProperty(const CmpiName& name, std::uint16_t value);
    void addProperty(const CmpiName& name, std::uint32_t value);
    void addProperty(const CmpiName& name, std::uint64_t value);
    void addProperty(const CmpiName& name, std::int8_t value);
    void addProperty(const CmpiName& name, const char* text); // null is the empty text
    void addProperty(const CmpiName& name, const std::string& text);
    void addProperty(const CmpiName& name, const CmpiObjectPath& reference);
    void addProperty(const CmpiName& name, const CmpiArray& array);
    void addDateTimeProperty(const CmpiName& name, const CMPIBroker* broker, std::uint64_t microsecondsSince1970);

    // Any other pointer would silently become a boolean.
    template <class Other>
    void addProperty(const CmpiName& name, const Other* value) = delete;

    const CMPIInstance* raw() const noexcept { return _raw; }

private:
    friend KDV_CMPICPP_API CmpiInstance makeCmpiInstance(const CMPIBroker* broker, const CmpiObjectPath& path);

    void set(const CmpiName& name, const CMPIValue* value, CMPIType type);
    void setKeys(const CMPIObjectPath* path);
    bool isListed(const CmpiName& name) const noexcept;

    CMPIInstance* _raw;
    const char* const* _wanted; // null-terminated list in force when the instance was made; null: everything
    // The keys of the path, by hash of their names: only filled while a list is in force. With more keys than room
    // everything is handed on, and the broker's own filter sorts it out.
    static constexpr unsigned keyRoom = 8;
    std::uint32_t _keyHashes[keyRoom];
    unsigned _keyCount = 0;
};

// Throws CmpiStatus when the broker refuses.
KDV_CMPICPP_API CmpiInstance makeCmpiInstance(const CMPIBroker* broker, const CmpiObjectPath& path);

// Puts a property list in force on this thread for its life: every makeCmpiInstance reaches setPropertyFilter with the
// list and all key names. The list (null-terminated, null for everything) must outlive the object. Nests.
class KDV_CMPICPP_API PropertyList {
public:
    explicit PropertyList(const char* const* names) noexcept;
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;
    ~PropertyList();

    static const char* const* current() noexcept;

private:
    const char* const* _previous;
};

} // namespace CmpiCpp
