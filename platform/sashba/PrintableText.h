// Texts for records and messages: printable UTF-8 of a bounded number of bytes, whatever came in. Control characters,
// NUL and bytes that are no UTF-8 become '?'; a cut never splits a character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace KDV {

std::string printableText(std::string_view text, std::size_t mostBytes);

} // namespace KDV
