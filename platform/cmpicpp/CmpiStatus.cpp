#include "cmpicpp/CmpiStatus.h"

#include "cmpicpp/BrokerObject.h"

namespace CmpiCpp {

CmpiStatus::CmpiStatus(int code, std::string text) : _code(static_cast<CMPIrc>(code)), _text(std::move(text))
{
    if (_text.empty()) _text = "CMPI error " + std::to_string(code);
}

CmpiStatus::~CmpiStatus() = default;

void throwStatus(const CMPIStatus& status, const char* call)
{
    std::string text(call);
    const char* message = textOrEmpty(status.msg);
    text += ": ";
    if (*message != '\0')
        text += message;
    else
        text += "CMPI error " + std::to_string(static_cast<int>(status.rc));
    throw CmpiStatus(status.rc, std::move(text));
}

} // namespace CmpiCpp
