// The broker's memory table (mft), which only the Standard profile has.
#include "broker/Calls.h"

#include <cstdlib>
#include <cstring>

namespace KDV::Host {
namespace {

// A mark is a scope of its own: what is made after it is freed with it.
CMPIGcStat* mark(const CMPIBroker* mb, CMPIStatus* status)
{
    try {
        auto* scope = new RequestScope(Broker::of(mb));
        tell(status, ok());
        return scope;
    } catch (...) {
        tell(status, failed(CMPI_RC_ERR_FAILED));
        return nullptr;
    }
}

CMPIStatus releaseMark(const CMPIBroker* mb, const CMPIGcStat* gc)
{
    const auto* scope = static_cast<const RequestScope*>(gc);
    if (!mb || !scope || RequestScope::current(Broker::of(mb)) != scope)
        return failed(CMPI_RC_ERR_INVALID_PARAMETER); // levels nest
    delete scope;
    return ok();
}

void* tracked(const CMPIBroker* mb, void* allocation) noexcept
{
    try {
        return allocation ? Broker::of(mb).counters().track(allocation) : nullptr;
    } catch (...) {
        std::free(allocation);
        return nullptr;
    }
}

void* cmpiMalloc(const CMPIBroker* mb, size_t size) { return tracked(mb, std::malloc(size)); }
void* cmpiCalloc(const CMPIBroker* mb, size_t count, size_t size) { return tracked(mb, std::calloc(count, size)); }

void cmpiFree(const CMPIBroker* mb, void* ptr)
{
    if (ptr && Broker::of(mb).counters().untrack(ptr)) std::free(ptr);
}

void* cmpiRealloc(const CMPIBroker* mb, void* ptr, size_t size)
{
    if (ptr && !Broker::of(mb).counters().untrack(ptr)) return nullptr;
    void* moved = std::realloc(ptr, size);
    if (!moved && ptr && size) return tracked(mb, ptr), nullptr; // the old allocation stays good
    return tracked(mb, moved);
}

char* cmpiStrDup(const CMPIBroker* mb, const char* str)
{
    return str ? static_cast<char*>(tracked(mb, strdup(str))) : nullptr;
}

template <class Abi>
void freeObject(const CMPIBroker*, Abi* object)
{
    if (object && object->ft) object->ft->release(object);
}

void freeChars(const CMPIBroker* mb, char* chars) { cmpiFree(mb, chars); }

} // namespace

CMPIBrokerMemFT memoryTable()
{
    return {CMPIVersion200,
            mark,
            releaseMark,
            cmpiMalloc,
            cmpiCalloc,
            cmpiRealloc,
            cmpiStrDup,
            cmpiFree,
            freeObject<CMPIInstance>,
            freeObject<CMPIObjectPath>,
            freeObject<CMPIArgs>,
            freeObject<CMPIString>,
            freeObject<CMPIArray>,
            freeObject<CMPIDateTime>,
            freeObject<CMPISelectExp>,
            freeChars};
}

} // namespace KDV::Host
