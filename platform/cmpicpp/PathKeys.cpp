#include "cmpicpp/PathKeys.h"

namespace CmpiCpp {

namespace {

// Servers answer a part that is not there with null, with an empty text or with a miss.
const char* partOf(const CMPIObjectPath* path, CMPIString* (*getter)(const CMPIObjectPath*, CMPIStatus*),
                   const char* call)
{
    if (!path || !getter) return "";
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPIString* part = getter(path, &status);
    if (isMiss(status.rc)) return "";
    throwIfFailed(status, call);
    return textOf(part);
}

} // namespace

const char* classNameOf(const CMPIObjectPath* path)
{
    return path ? partOf(path, path->ft->getClassName, "getClassName") : "";
}

const char* nameSpaceOf(const CMPIObjectPath* path)
{
    return path ? partOf(path, path->ft->getNameSpace, "getNameSpace") : "";
}

const char* hostOf(const CMPIObjectPath* path)
{
    return path ? partOf(path, path->ft->getHostname, "getHostname") : "";
}

const char* PathKey::text() const
{
    if (data.type == CMPI_chars) return data.value.chars ? data.value.chars : "";
    return textOf(data.value.string);
}

CMPICount keyCountOf(const CMPIObjectPath* path)
{
    if (!path) return 0;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPICount count = path->ft->getKeyCount(path, &status);
    throwIfFailed(status, "getKeyCount");
    return count;
}

PathKey keyAt(const CMPIObjectPath* path, CMPICount index)
{
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIString* name = nullptr;
    PathKey key{};
    key.data = path->ft->getKeyAt(path, index, &name, &status);
    throwIfFailed(status, "getKeyAt");
    key.name = textOf(name);
    return key;
}

} // namespace CmpiCpp
