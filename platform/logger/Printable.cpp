#include "logger/LogSinks.h"

#include <cstring>

namespace {

// Length of the UTF-8 character at the start of text; 0 when it is none, or a control character (U+0000 to U+001F,
// U+007F to U+009F), an overlong form, a surrogate or beyond U+10FFFF.
std::size_t printableCharacter(std::string_view text) noexcept
{
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = at(0);
    if (first < 0x80) return first >= 0x20 && first != 0x7f ? 1 : 0;
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xc0) != 0x80) return 0;
    }
    const unsigned second = at(1);
    if ((first == 0xc2 && second < 0xa0) || (first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f) ||
        (first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f))
        return 0;
    return length;
}

std::size_t escapeByte(unsigned char byte, char* out) noexcept
{
    constexpr char digits[] = "0123456789abcdef";
    out[0] = '\\';
    if (byte == '\n' || byte == '\t' || byte == '\r') {
        out[1] = byte == '\n' ? 'n' : byte == '\t' ? 't' : 'r';
        return 2;
    }
    out[1] = 'x';
    out[2] = digits[byte >> 4];
    out[3] = digits[byte & 0xf];
    return 4;
}

} // namespace

std::size_t makePrintable(std::string_view text, char* out, std::size_t room) noexcept
{
    constexpr std::string_view mark = "...";
    std::size_t length = 0;
    std::size_t markAt = 0; // the last place where the mark still fits
    while (!text.empty()) {
        char piece[4];
        std::size_t taken = printableCharacter(text);
        std::size_t size = taken;
        if (taken == 0) {
            taken = 1;
            size = escapeByte(static_cast<unsigned char>(text[0]), piece);
        } else {
            std::memcpy(piece, text.data(), taken);
        }
        if (length + size > room) {
            if (room < mark.size()) return length;
            std::memcpy(out + markAt, mark.data(), mark.size());
            return markAt + mark.size();
        }
        std::memcpy(out + length, piece, size);
        length += size;
        if (length + mark.size() <= room) markAt = length;
        text.remove_prefix(taken);
    }
    return length;
}
