// Texts and numbers as devices and the kernel write them. Pure functions; nothing is thrown but std::bad_alloc.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace KDV {

// Without the white space and NULs around it.
std::string_view trimmed(std::string_view text);

// A whole decimal number, or a hexadecimal one after "0x"; nothing else around it and no overflow.
std::optional<std::uint64_t> wholeNumber(std::string_view text);

// Puts numbers in a text in the order of their values: "phy-0:2" before "phy-0:10".
bool naturalLess(std::string_view left, std::string_view right);

// Sixteen digits, upper case.
std::string hex16(std::uint64_t value);

} // namespace KDV
