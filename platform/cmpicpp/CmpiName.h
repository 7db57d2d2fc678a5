// The name of a class, property, method, role or namespace: a view of a NUL-terminated text that lives elsewhere,
// compared without regard to ASCII case, as CIM names are. Null counts as the empty name.
#pragma once

#include "cmpicpp/Export.h"

#include <string>

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiName {
public:
    CmpiName(const char* text) noexcept : _text(text ? text : "") {}
    CmpiName(const std::string& text) noexcept : _text(text.c_str()) {}

    const char* c_str() const noexcept { return _text; }
    bool empty() const noexcept { return *_text == '\0'; }

private:
    const char* _text;
};

KDV_CMPICPP_API bool operator==(const CmpiName& a, const CmpiName& b) noexcept;
inline bool operator!=(const CmpiName& a, const CmpiName& b) noexcept { return !(a == b); }

} // namespace CmpiCpp
