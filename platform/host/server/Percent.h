// Percent encoding, as DSP0200 wants it in headers that carry free text or paths.
#pragma once

#include <string>
#include <string_view>

namespace KDV::Host {

std::string percentEncoded(std::string_view text);
// "%2F" becomes "/"; a percent sign without two digits stays as it is.
std::string percentDecoded(std::string_view text);

} // namespace KDV::Host
