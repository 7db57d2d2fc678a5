// A CIM status that ends an operation: what() is the description that the client reads. Thrown by the code that
// executes operations, caught once for each request.
#pragma once

#include "broker/Upcalls.h"

#include <stdexcept>
#include <string>

namespace KDV::Host {

// The codes of DSP0200 that the C interface to providers has no names for.
enum CimCode : int {
    invalidEnumerationContext = 21,
    invalidOperationTimeout = 22,
    pullHasBeenAbandoned = 23,
    pullCannotBeAbandoned = 24,
    filteredEnumerationNotSupported = 25,
    continuationOnErrorNotSupported = 26,
    serverLimitsExceeded = 27,
    serverIsShuttingDown = 28,
    queryFeatureNotSupported = 29,
};

class CimError : public std::runtime_error {
public:
    CimError(int code, const std::string& what) : std::runtime_error(what), _code(code) {}
    int code() const noexcept { return _code; }

private:
    int _code;
};

// The outcome of a provider's call as the client may see it: codes that are the C interface's own become 1 (failed).
inline void throwIfFailed(const Outcome& outcome)
{
    if (outcome.rc == CMPI_RC_OK) return;
    const int code = outcome.rc;
    const bool known = code > 0 && code <= queryFeatureNotSupported;
    throw CimError(known ? code : CMPI_RC_ERR_FAILED, outcome.message);
}

} // namespace KDV::Host
