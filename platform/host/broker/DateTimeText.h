// The text form of CIM dates and intervals (DSP0004: "yyyymmddhhmmss.mmmmmmsutc", "ddddddddhhmmss.mmmmmm:000") and its
// microseconds. Pure functions.
#pragma once

#include <cstdint>
#include <string_view>

namespace KDV::Host {

// Not strict: only the length and the character 21 count.
bool isDateTimeText(std::string_view text, bool strict);
// Of a text of 25 characters; false for fields that are not digits (asterisks) and for times before 1970.
bool dateTimeToBinary(const char* text, std::uint64_t& microseconds);
void dateTimeFromBinary(std::uint64_t microseconds, bool interval, bool localTime, char (&text)[26]);

} // namespace KDV::Host
