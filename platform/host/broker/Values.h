// The values that other objects hold: texts, arrays, dates. Made by a RequestScope (or as clones) and owned by it, or
// lent by the object they are part of. Reading through these types goes round the C tables; a host's serialiser does.
#pragma once

#include "broker/Memory.h"
#include "broker/ObjectHead.h"
#include "cmpi/Objects.h"

#include <string_view>

namespace KDV::Host {

struct StringObject : CMPIString {
    ObjectHead head;
    std::uint32_t length;
    bool isNull; // made from a null pointer

    const char* chars() const noexcept { return reinterpret_cast<const char*>(this + 1); } // ends with a NUL
    std::string_view text() const noexcept { return {chars(), length}; }
    static const StringObject& of(const CMPIString* string) noexcept
    {
        return *static_cast<const StringObject*>(string);
    }
};

struct ArrayObject : CMPIArray {
    ObjectHead head;
    Memory* memory;
    CMPIType elementType; // without CMPI_ARRAY
    bool growable;
    CMPICount size;
    CMPICount capacity;
    CMPIData* elements; // CMPI_nullValue until set

    const CMPIData* begin() const noexcept { return elements; }
    const CMPIData* end() const noexcept { return elements + size; }
    static const ArrayObject& of(const CMPIArray* array) noexcept { return *static_cast<const ArrayObject*>(array); }
};

struct DateTimeObject : CMPIDateTime {
    ObjectHead head;
    Memory* memory;
    StringObject* lentText;
    char text[26]; // the 25 characters of DSP0004 and a NUL

    static const DateTimeObject& of(const CMPIDateTime* date) noexcept
    {
        return *static_cast<const DateTimeObject*>(date);
    }
};

// The text of a value of type CMPI_string or CMPI_dateTime that is not NULL.
inline std::string_view textOf(const CMPIValue& value) noexcept { return StringObject::of(value.string).text(); }
inline std::string_view dateTextOf(const CMPIValue& value) noexcept
{
    return {DateTimeObject::of(value.dateTime).text, 25};
}
inline bool isNull(const CMPIData& data) noexcept { return (data.state & CMPI_nullValue) != 0; }

} // namespace KDV::Host
