// A constant of the schema: the default of a property or the value of a qualifier. Plain values, owned by the class or
// declaration that they stand in and never changed once the class is in its repository.
#pragma once

#include "cmpi/Types.h"

#include <string>
#include <vector>

namespace KDV::Host {

struct SchemaValue {
    CMPIType type = CMPI_null;         // with CMPI_ARRAY for arrays; CMPI_null: a NULL without a type
    bool isNull = true;                // NULL as a whole; elements of arrays may be NULL by themselves
    CMPIValue number{};                // booleans, integers (in the member of their type), reals, char16
    std::string text;                  // CMPI_string, CMPI_dateTime, and the path text of CMPI_ref
    std::vector<SchemaValue> elements; // of an array, each with the element type

    bool isArray() const noexcept { return (type & CMPI_ARRAY) != 0; }
};

} // namespace KDV::Host
