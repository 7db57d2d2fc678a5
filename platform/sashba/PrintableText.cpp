#include "sashba/PrintableText.h"

#include <cstdint>

namespace KDV {
namespace {

struct Character {
    std::uint32_t code = 0;
    std::size_t bytes = 1;
    bool valid = false;
};

Character asciiOrInvalid(unsigned char byte) { return {byte, 1, byte < 0x80}; }

// The well-formed sequences of RFC 3629, no longer forms and no surrogates.
Character firstCharacter(std::string_view text)
{
    const auto byteAt = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byteAt(0);
    const std::size_t bytes = lead < 0x80   ? 1
                              : lead < 0xC2 ? 0
                              : lead < 0xE0 ? 2
                              : lead < 0xF0 ? 3
                              : lead < 0xF5 ? 4
                                            : 0;
    if (bytes < 2 || bytes > text.size()) return asciiOrInvalid(lead);
    std::uint32_t code = lead & (0x7FU >> bytes);
    for (std::size_t at = 1; at < bytes; ++at) {
        if ((byteAt(at) & 0xC0) != 0x80) return {lead, 1, false};
        code = code << 6 | (byteAt(at) & 0x3FU);
    }
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < smallest[bytes] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {lead, 1, false};
    return {code, bytes, true};
}

bool isPrintable(std::uint32_t code)
{
    if (code < 0x20 || (code >= 0x7F && code < 0xA0)) // C0, DEL, C1
        return false;
    if (code == 0x2028 || code == 0x2029 || code == 0xFEFF) // line and paragraph separator, byte order mark
        return false;
    if ((code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069)) // they reorder what a log shows
        return false;
    return (code & 0xFFFE) != 0xFFFE && !(code >= 0xFDD0 && code <= 0xFDEF); // noncharacters
}

} // namespace

std::string printableText(std::string_view text, std::size_t mostBytes)
{
    std::string out;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const bool keep = character.valid && isPrintable(character.code);
        const std::string_view piece = keep ? text.substr(0, character.bytes) : std::string_view("?");
        if (out.size() + piece.size() > mostBytes) break;
        out += piece;
        text.remove_prefix(character.bytes);
    }
    return out;
}

} // namespace KDV
