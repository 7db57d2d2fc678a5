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
    virtual ~CmpiStatus();

    CMPIrc code() const noexcept { return _code; }
    const char* str() const noexcept { return _text.c_str(); } // never null; "CMPI error 6" style text when none was given

private:
    CMPIrc _code;
    std::string _text;
};

// Throws when the status is not OK; call names the broker function for the text.
KDV_CMPICPP_API void throwIfFailed(const CMPIStatus& status, const char* call);

} // namespace CmpiCpp
