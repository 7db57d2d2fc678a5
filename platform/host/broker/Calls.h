// The frame of every C function of the broker: checks the object, takes injected faults, keeps exceptions inside.
// Internal to this library.
#pragma once

#include "broker/Counters.h"
#include "broker/ObjectMaking.h"

#include <string>
#include <string_view>

namespace KDV::Host {

inline CMPIStatus ok() noexcept { return {CMPI_RC_OK, nullptr}; }
inline CMPIStatus failed(CMPIrc rc) noexcept { return {rc, nullptr}; }
inline void tell(CMPIStatus* status, const CMPIStatus& outcome) noexcept
{
    if (status) *status = outcome;
}
inline std::string_view viewOf(const char* text) noexcept { return text ? std::string_view(text) : std::string_view(); }

// A status with a text that lives in the caller's scope; without a scope, the code alone.
CMPIStatus failedWith(Broker& broker, CMPIrc rc, std::string_view text) noexcept;

// A new string object of the caller's scope; null without one.
CMPIString* textInScope(Broker& broker, std::string_view text);

CMPIStatus countUseAfterRelease(const ObjectHead& head) noexcept;

// Rc 60 for objects that are no longer there, the code of an injected fault, else 0.
template <class Object, class Abi>
CMPIStatus check(const Abi* self, Object*& object) noexcept
{
    if (!self || !self->hdl) return failed(CMPI_RC_ERR_INVALID_HANDLE);
    object = static_cast<Object*>(const_cast<Abi*>(self));
    const ObjectHead& head = object->head;
    if (__builtin_expect(head.state == ObjectState::Released, false)) return countUseAfterRelease(head);
    if (__builtin_expect(head.broker->faultArmed(), false)) return failed(head.broker->takeFault());
    return ok();
}

// Objects passed as arguments: no fault, but the same check. Null if it cannot be used.
template <class Object, class Abi>
const Object* argument(const Abi* passed) noexcept
{
    if (!passed || !passed->hdl) return nullptr;
    const auto* object = static_cast<const Object*>(passed);
    if (__builtin_expect(object->head.state == ObjectState::Released, false)) {
        countUseAfterRelease(object->head);
        return nullptr;
    }
    return object;
}

// A function that answers with a status: `body` gets the object and returns a CMPIStatus.
template <class Object, class Abi, class Body>
CMPIStatus change(const Abi* self, Body&& body) noexcept
{
    Object* object = nullptr;
    const CMPIStatus status = check(self, object);
    if (__builtin_expect(status.rc != CMPI_RC_OK, false)) return status;
    try {
        return body(*object);
    } catch (...) {
        return failed(CMPI_RC_ERR_FAILED);
    }
}

// A function that answers with a value: `body` gets the object and a status that is 0 to begin with.
template <class Object, class Result, class Abi, class Body>
Result answer(const Abi* self, CMPIStatus* status, Result none, Body&& body) noexcept
{
    Object* object = nullptr;
    CMPIStatus outcome = check(self, object);
    if (__builtin_expect(outcome.rc == CMPI_RC_OK, true)) {
        try {
            // The value goes straight to the caller: copies of what was written in parts would stall on the way.
            Result result = body(*object, outcome);
            tell(status, outcome);
            return outcome.rc == CMPI_RC_OK ? result : none;
        } catch (...) {
            outcome = failed(CMPI_RC_ERR_FAILED);
        }
    }
    tell(status, outcome);
    return none;
}

// A factory: `body` gets the broker, the scope that will own the object, and a status.
template <class Result, class Body>
Result* produce(const CMPIBroker* mb, CMPIStatus* status, Body&& body) noexcept
{
    if (!mb) {
        tell(status, failed(CMPI_RC_ERR_INVALID_HANDLE));
        return nullptr;
    }
    Broker& broker = Broker::of(mb);
    CMPIStatus outcome = failed(broker.faultArmed() ? broker.takeFault() : CMPI_RC_OK);
    Result* result = nullptr;
    if (__builtin_expect(outcome.rc == CMPI_RC_OK, true)) {
        try {
            RequestScope* scope = RequestScope::current(broker);
            if (scope) {
                result = body(broker, *scope, outcome);
            } else {
                ++broker.counters().unattachedCalls;
                outcome = failed(CMPI_RC_ERR_FAILED);
            }
        } catch (...) {
            outcome = failed(CMPI_RC_ERR_FAILED);
        }
    }
    tell(status, outcome);
    return outcome.rc == CMPI_RC_OK ? result : nullptr;
}

// Release, the same for all kinds. `memory` is the object's own.
CMPIStatus releaseObject(ObjectHead& head, Memory* memory) noexcept;
template <class Object, class Abi>
CMPIStatus release(Abi* self) noexcept
{
    if (!self || !self->hdl) return failed(CMPI_RC_ERR_INVALID_HANDLE);
    auto* object = static_cast<Object*>(self);
    return releaseObject(object->head, object->memory);
}

template <class Object, class Abi>
Abi* cloneObject(const Abi* self, CMPIStatus* status) noexcept
{
    return answer<Object, Abi*>(self, status, nullptr, [](Object& object, CMPIStatus&) -> Abi* {
        const Placement heap = Placement::own(*object.head.broker, nullptr, object.head.kind, sizeof(Object) + 512);
        return copyOf(heap, object);
    });
}

inline CMPIData missing(CMPIValueState state) noexcept { return {CMPI_null, state, {}}; }

} // namespace KDV::Host
