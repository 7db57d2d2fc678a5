// An object path: class, namespace, host and keys in the order they were added. Texts live in the memory of the path
// (or are the names of its class). Made by a RequestScope; one thread at a time.
#pragma once

#include "broker/Values.h"
#include "hostschema/ClassRepository.h"

#include <string>

namespace KDV::Host {

struct KeyBinding {
    std::string_view name;
    const PropertyInfo* property; // null if the class does not declare it
    StringObject* lentName;       // made when the C interface first asks for it
    CMPIData data;                // texts as CMPI_string
};

struct PathObject : CMPIObjectPath {
    ObjectHead head;
    Memory* memory;
    const ClassInfo* classInfo; // null: unknown to the repository
    std::string_view host;
    std::string_view nameSpace;
    std::string_view className;
    StringObject* lentHost;
    StringObject* lentNameSpace;
    StringObject* lentClassName;
    KeyBinding* keys;
    std::uint32_t keyCount;
    std::uint32_t keyCapacity;

    const KeyBinding* begin() const noexcept { return keys; }
    const KeyBinding* end() const noexcept { return keys + keyCount; }
    const KeyBinding* findKey(std::string_view name) const noexcept;

    // For the host itself: unchecked, and never a fault. Texts are copied; another key of the name is replaced.
    void setHost(std::string_view text);
    void setNameSpace(std::string_view text);
    void addTextKey(std::string_view name, std::string_view value);
    void addKey(std::string_view name, const CMPIValue& value, CMPIType type); // text: CMPI_string; paths: CMPI_ref
    // A key from a client's KEYVALUE with VALUETYPE numeric: takes the type of the key property if the class declares
    // it, as far as the profile's server would; false if the text is no number that fits.
    bool addNumericKey(std::string_view name, std::string_view digits);

    // "//host/namespace:Class.key=\"text\",key2=number" as DSP0207 writes it; host and namespace may be absent.
    std::string text() const;
    static const PathObject& of(const CMPIObjectPath* path) noexcept { return *static_cast<const PathObject*>(path); }
};

} // namespace KDV::Host
