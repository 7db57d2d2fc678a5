// Reading the parts of a path without copying: names and texts stay in the broker's objects and end with the path. For
// paths of any origin, so the number of keys and the depth of references are not trusted.
#pragma once

#include "cmpicpp/BrokerObject.h"

#include <cstddef>

namespace CmpiCpp {

// Empty when the path is null or has none.
const char* classNameOf(const CMPIObjectPath* path);
const char* nameSpaceOf(const CMPIObjectPath* path);
const char* hostOf(const CMPIObjectPath* path);

struct PathKey {
    const char* name;
    CMPIData data;

    bool isNull() const noexcept { return (data.state & (CMPI_nullValue | CMPI_notFound | CMPI_badValue)) != 0; }
    bool isText() const noexcept { return data.type == CMPI_string || data.type == CMPI_chars; }
    const char* text() const; // only for texts
};

CMPICount keyCountOf(const CMPIObjectPath* path);
PathKey keyAt(const CMPIObjectPath* path, CMPICount index);

// Deeper references are cut off: real ones nest twice at most.
constexpr unsigned maximumReferenceDepth = 8;

// Both rules of CmpiObjectPath; see there.
bool equalPaths(const CMPIObjectPath* a, const CMPIObjectPath* b, const char* defaultNameSpace, unsigned depth);
std::uint64_t fingerprintOf(const CMPIObjectPath* path, const char* defaultNameSpace, unsigned depth);

// A hash that is the same for names that differ in the case of ASCII letters only.
std::uint64_t nameHash(const char* name) noexcept;

} // namespace CmpiCpp
