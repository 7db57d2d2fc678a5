// The invocation context of a call: lent by the server, valid until the call returns, passed on as it is.
#pragma once

#include "cmpi/Objects.h"

namespace CmpiCpp {

class CmpiContext {
public:
    explicit CmpiContext(const CMPIContext* raw) noexcept : _raw(raw) {}
    const CMPIContext* raw() const noexcept { return _raw; }

private:
    const CMPIContext* _raw;
};

} // namespace CmpiCpp
