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
    bool wants(const CmpiName& name) const noexcept;

    void addProperty(const CmpiName& name, bool value);
    void addProperty(const CmpiName& name, std::uint8_t value);
    void addProperty(const CmpiName& name, std::uint16_t value);
    void addProperty(const CmpiName& name, std::uint32_t value);
    void addProperty(const CmpiName& name, std::uint64_t value);
    void addProperty(const CmpiName& name, std::int8_t value);
    void addProperty(const CmpiName& name, const char* text);
    void addProperty(const CmpiName& name, const std::string& text);
    void addProperty(const CmpiName& name, const CmpiObjectPath& reference);
    void addProperty(const CmpiName& name, const CmpiArray& array);
    void addDateTimeProperty(const CmpiName& name, const CMPIBroker* broker, std::uint64_t microsecondsSince1970);

    const CMPIInstance* raw() const noexcept { return _raw; }

private:
    void set(const CmpiName& name, const CMPIValue* value, CMPIType type);

    CMPIInstance* _raw;
    const char* const* _wanted; // null-terminated list in force when the instance was made; null: everything
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
