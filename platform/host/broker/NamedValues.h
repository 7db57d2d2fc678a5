// Lists of named values: the arguments of a method and the entries of a context. Made by a RequestScope (or, for
// contexts of threads to come, as clones); one thread at a time.
#pragma once

#include "broker/Values.h"

#include <string_view>

namespace KDV::Host {

struct NamedValue {
    StringObject* name;
    CMPIData data; // texts as CMPI_string
};

struct NamedValueList {
    NamedValue* entries;
    std::uint32_t count;
    std::uint32_t capacity;

    const NamedValue* begin() const noexcept { return entries; }
    const NamedValue* end() const noexcept { return entries + count; }
    const NamedValue* find(std::string_view name) const noexcept;
};

struct ArgsObject : CMPIArgs {
    ObjectHead head;
    Memory* memory;
    NamedValueList values;

    // For the host: adds or replaces, copying the value; text as CMPI_string objects or through addText.
    void add(std::string_view name, const CMPIValue* value, CMPIType type);
    void addText(std::string_view name, std::string_view text);
    static const ArgsObject& of(const CMPIArgs* args) noexcept { return *static_cast<const ArgsObject*>(args); }
};

struct ContextObject : CMPIContext {
    ObjectHead head;
    Memory* memory;
    NamedValueList values;
    RequestScope* attached; // the scope of the thread that this context is attached to

    void add(std::string_view name, const CMPIValue* value, CMPIType type);
    void addText(std::string_view name, std::string_view text);
    void addNumber(std::string_view name, CMPIUint32 number);
    static const ContextObject& of(const CMPIContext* context) noexcept
    {
        return *static_cast<const ContextObject*>(context);
    }
};

} // namespace KDV::Host
