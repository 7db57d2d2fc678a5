// Turns any bytes into text that XML 1.0 allows, and numbers into the forms that DSP0201 gives them. Texts that come
// from hardware may hold anything: what is not UTF-8, and the characters that XML forbids, become U+FFFD, one for each
// ill-formed sequence. No locale, no allocation but the buffer's; may be called from any thread with its own buffer.
#pragma once

#include "hostxml/ReplyBuffer.h"

#include <cstdint>
#include <string_view>

namespace KDV::Host {

// Content of an element. A carriage return becomes a reference, since parsers turn a bare one into a line feed.
void appendText(ReplyBuffer& out, std::string_view text);
// Value of an attribute in double quotes. Line feeds and tabs become references too: parsers turn them into blanks.
void appendAttribute(ReplyBuffer& out, std::string_view text);

void appendNumber(ReplyBuffer& out, std::uint64_t value);
void appendNumber(ReplyBuffer& out, std::int64_t value);
void appendNumber(ReplyBuffer& out, double value); // always with a decimal point; INF, -INF and NaN
void appendNumber(ReplyBuffer& out, float value);

// One character of UTF-16 as a provider gives it; halves of pairs become U+FFFD.
void appendChar16(ReplyBuffer& out, std::uint16_t value);

} // namespace KDV::Host
