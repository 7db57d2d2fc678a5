// Serial numbers and world-wide names in what smartctl printed as JSON. Names stand there as texts and, divided into
// fields, as decimal numbers. Pure; output that is no JSON gives nothing. Throws std::bad_alloc only.
#pragma once

#include "capture/Secrets.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace KdvSas {

void findInSmartctl(std::string_view output, Secrets& secrets);

// The output with every text and every world-wide name put through the functions; nothing when it is no JSON.
std::optional<std::string> replaceInSmartctl(std::string_view output,
                                             const std::function<std::string(const std::string&)>& text,
                                             const std::function<std::uint64_t(std::uint64_t)>& address);

} // namespace KdvSas
