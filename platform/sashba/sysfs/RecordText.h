// Puts a text into a record's field: printable, cut to the field, NUL at its end. Header only.
#pragma once

#include "sashba/PrintableText.h"
#include "sashba/sysfs/DeviceText.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace KDV {

template <std::size_t capacity>
void putText(char (&field)[capacity], std::string_view text)
{
    const std::string printable = printableText(trimmed(text), capacity - 1);
    std::memset(field, 0, capacity);
    std::memcpy(field, printable.data(), printable.size());
}

// A name that means another thing when it is cut: whole or not at all.
template <std::size_t capacity>
void putWhole(char (&field)[capacity], std::string_view text)
{
    putText(field, text.size() < capacity ? text : std::string_view());
}

} // namespace KDV
