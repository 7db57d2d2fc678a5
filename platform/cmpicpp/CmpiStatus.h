// A CMPI error as an exception: return code and text. On purpose not a std::exception: callers tell a refusal of the
// broker from a failure of the program by the kind they catch. Made from a broker's status in one place only.
#pragma once

#include "cmpi/Types.h"
#include "cmpicpp/Export.h"

#include <string>

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiStatus {
public:
    explicit CmpiStatus(int code, std::string text = {});
    CmpiStatus(const CmpiStatus&) = default;
    CmpiStatus(CmpiStatus&&) = default;
    CmpiStatus& operator=(const CmpiStatus&) = default;
    CmpiStatus& operator=(CmpiStatus&&) = default;
    virtual ~CmpiStatus();

    CMPIrc code() const noexcept { return _code; }

    // Never null; "CMPI error 6" when no text was given.
    const char* str() const noexcept { return _text.c_str(); }

private:
    CMPIrc _code;
    std::string _text;
};

[[noreturn]] KDV_CMPICPP_API void throwStatus(const CMPIStatus& status, const char* call);

// Throws when the status is not OK; call names the broker function for the text.
inline void throwIfFailed(const CMPIStatus& status, const char* call)
{
    if (__builtin_expect(status.rc != CMPI_RC_OK, 0)) throwStatus(status, call);
}

// Servers differ in how they say that something is not there.
inline bool isMiss(CMPIrc code) noexcept
{
    return code == CMPI_RC_ERR_NOT_FOUND || code == CMPI_RC_ERR_NO_SUCH_PROPERTY;
}

} // namespace CmpiCpp
