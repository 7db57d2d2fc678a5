#include "hostxml/RequestError.h"

namespace KDV::Host {

const char* cimErrorName(RequestFault fault) noexcept
{
    switch (fault) {
    case RequestFault::NotWellFormed:
        return "request-not-well-formed";
    case RequestFault::NotLooselyValid:
        return "request-not-loosely-valid";
    case RequestFault::NotValid:
        return "request-not-valid";
    case RequestFault::HeaderMismatch:
        return "header-mismatch";
    case RequestFault::UnsupportedCimVersion:
        return "unsupported-cim-version";
    case RequestFault::UnsupportedDtdVersion:
        return "unsupported-dtd-version";
    case RequestFault::UnsupportedProtocolVersion:
        return "unsupported-protocol-version";
    case RequestFault::UnsupportedOperation:
        return "unsupported-operation";
    case RequestFault::MultipleRequestsUnsupported:
        return "multiple-requests-unsupported";
    }
    return "request-not-valid";
}

unsigned httpStatusOf(RequestFault fault) noexcept
{
    switch (fault) {
    case RequestFault::UnsupportedCimVersion:
    case RequestFault::UnsupportedDtdVersion:
    case RequestFault::UnsupportedProtocolVersion:
    case RequestFault::UnsupportedOperation:
    case RequestFault::MultipleRequestsUnsupported:
        return 501;
    default:
        return 400;
    }
}

} // namespace KDV::Host
