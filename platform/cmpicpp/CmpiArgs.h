// Method arguments and a select expression: lent by the server for one call and only passed on. The raw pointers may be
// null (servers call filter operations without an expression).
#pragma once

#include "cmpi/Objects.h"

namespace CmpiCpp {

class CmpiArgs {
public:
    explicit CmpiArgs(const CMPIArgs* in, CMPIArgs* out) noexcept : _in(in), _out(out) {}
    const CMPIArgs* in() const noexcept { return _in; }
    CMPIArgs* out() const noexcept { return _out; }

private:
    const CMPIArgs* _in;
    CMPIArgs* _out;
};

class CmpiSelectExp {
public:
    explicit CmpiSelectExp(const CMPISelectExp* raw) noexcept : _raw(raw) {}
    const CMPISelectExp* raw() const noexcept { return _raw; }

private:
    const CMPISelectExp* _raw;
};

} // namespace CmpiCpp
