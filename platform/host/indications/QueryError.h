// A query that cannot be used: 14 for a language that is not known, 15 for everything that is wrong in the text. what()
// says what was expected and at which column. Thrown while compiling only, never while evaluating.
#pragma once

#include "cmpi/Types.h"

#include <stdexcept>
#include <string>

namespace KDV::Host {

class QueryError : public std::runtime_error {
public:
    QueryError(CMPIrc rc, const std::string& what) : std::runtime_error(what), _rc(rc) {}
    CMPIrc rc() const noexcept { return _rc; }

private:
    CMPIrc _rc;
};

} // namespace KDV::Host
