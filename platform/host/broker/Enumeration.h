// The answer of an up-call, walked by the provider. Made by the broker in the caller's scope; one thread at a time.
#pragma once

#include "broker/Values.h"

namespace KDV::Host {

struct EnumerationObject : CMPIEnumeration {
    ObjectHead head;
    Memory* memory;
    CMPIData* elements;
    CMPICount count;
    CMPICount capacity;
    CMPICount next;

    void append(const CMPIData& data); // the value is inside this object's memory already
    static const EnumerationObject& of(const CMPIEnumeration* enumeration) noexcept
    {
        return *static_cast<const EnumerationObject*>(enumeration);
    }
};

} // namespace KDV::Host
