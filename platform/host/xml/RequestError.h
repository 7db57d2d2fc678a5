// A message that is no valid operation request, as DSP0200 wants it answered: by an HTTP status with a CIMError header
// and no CIM-XML. what() says what was found and what was expected.
#pragma once

#include <stdexcept>
#include <string>

namespace KDV::Host {

enum class RequestFault {
    NotWellFormed,
    NotLooselyValid,
    NotValid,
    HeaderMismatch,
    UnsupportedCimVersion,
    UnsupportedDtdVersion,
    UnsupportedProtocolVersion,
    UnsupportedOperation,
    MultipleRequestsUnsupported,
};

// The text of the CIMError header.
const char* cimErrorName(RequestFault fault) noexcept;
// 400 for what the client did wrong, 501 for what this server does not do.
unsigned httpStatusOf(RequestFault fault) noexcept;

class RequestError : public std::runtime_error {
public:
    RequestError(RequestFault fault, const std::string& what) : std::runtime_error(what), _fault(fault) {}
    RequestFault fault() const noexcept { return _fault; }

private:
    RequestFault _fault;
};

} // namespace KDV::Host
