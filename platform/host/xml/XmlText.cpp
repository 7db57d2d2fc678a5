#include "hostxml/XmlText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace KDV::Host {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr std::size_t longestPerByte = 6;                // &quot;

constexpr std::uint64_t ones = 0x0101010101010101u;
constexpr std::uint64_t highs = 0x8080808080808080u;

// High bit set in (at least) the bytes that are zero; exact as to whether there is any.
constexpr std::uint64_t zeroBytes(std::uint64_t word) { return (word - ones) & ~word & highs; }
constexpr std::uint64_t equalBytes(std::uint64_t word, char c)
{
    return zeroBytes(word ^ (ones * static_cast<unsigned char>(c)));
}

// True if every byte of the word stands for itself in XML: ASCII, no control character, none of & < > ".
constexpr bool isPlain(std::uint64_t word)
{
    const std::uint64_t control = (word - ones * 0x20) & ~word & highs;
    return ((word & highs) | control | equalBytes(word, '&') | equalBytes(word, '<') | equalBytes(word, '>') |
            equalBytes(word, '"')) == 0;
}

constexpr bool isPlain(unsigned char c)
{
    return c >= 0x20 && c < 0x80 && c != '&' && c != '<' && c != '>' && c != '"';
}

std::uint64_t loadWord(const char* from)
{
    std::uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

char* copy(char* to, std::string_view text)
{
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

// Length of the well-formed UTF-8 sequence at `from` (lead byte 0x80 and above) that XML allows. Otherwise `length` is
// that of the ill-formed part to replace, and the result is false (Unicode, table 3-7).
bool validSequence(const unsigned char* from, std::size_t left, std::size_t& length)
{
    const unsigned lead = from[0];
    std::size_t need = 0;
    unsigned low = 0x80, high = 0xBF;
    length = 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        need = 1;
    else if (lead >= 0xE0 && lead <= 0xEF) {
        need = 2;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF; // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        need = 3;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else
        return false;
    for (std::size_t i = 1; i <= need; ++i, ++length) {
        if (i >= left || from[i] < low || from[i] > high) return false;
        low = 0x80;
        high = 0xBF;
    }
    // U+FFFE and U+FFFF are encoded characters, but XML does not allow them.
    return !(lead == 0xEF && from[1] == 0xBF && from[2] >= 0xBE);
}

// The characters that isPlain refuses, one at a time. `from` advances past what was taken.
char* appendSpecial(char* to, const char*& from, const char* end, bool attribute)
{
    const auto c = static_cast<unsigned char>(*from);
    if (c >= 0x80) {
        std::size_t length;
        const bool good =
            validSequence(reinterpret_cast<const unsigned char*>(from), static_cast<std::size_t>(end - from), length);
        to = copy(to, good ? std::string_view(from, length) : replacement);
        from += length;
        return to;
    }
    ++from;
    switch (c) {
    case '&':
        return copy(to, "&amp;");
    case '<':
        return copy(to, "&lt;");
    case '>':
        return copy(to, "&gt;");
    case '"':
        return copy(to, "&quot;");
    case '\r':
        return copy(to, "&#13;");
    case '\n':
        return copy(to, attribute ? "&#10;" : "\n");
    case '\t':
        return copy(to, attribute ? "&#9;" : "\t");
    default:
        return copy(to, replacement);
    }
}

void appendEscaped(ReplyBuffer& out, std::string_view text, bool attribute)
{
    const char* from = text.data();
    const char* const end = from + text.size();
    char* to = out.room(text.size() + sizeof(std::uint64_t));
    while (from != end) {
        while (end - from >= static_cast<std::ptrdiff_t>(sizeof(std::uint64_t))) {
            const std::uint64_t word = loadWord(from);
            if (!isPlain(word)) break;
            std::memcpy(to, &word, sizeof word);
            from += sizeof word;
            to += sizeof word;
        }
        while (from != end && isPlain(static_cast<unsigned char>(*from)))
            *to++ = *from++;
        if (from == end) break;
        // What follows may take more than was asked for: from here on room for the worst case of a run.
        out.commit(to);
        to = out.room(static_cast<std::size_t>(end - from) + 4 * longestPerByte + sizeof(std::uint64_t));
        to = appendSpecial(to, from, end, attribute);
    }
    out.commit(to);
}

template <class Number>
void appendInteger(ReplyBuffer& out, Number value)
{
    constexpr std::size_t longest = 20; // of a 64-bit number with its sign
    char* to = out.room(longest);
    out.commit(std::to_chars(to, to + longest, value).ptr);
}

template <class Real>
void appendReal(ReplyBuffer& out, Real value)
{
    if (std::isnan(value)) return out.append("NaN");
    if (std::isinf(value)) return out.append(value < 0 ? "-INF" : "INF");
    std::array<char, 40> text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific);
    const std::string_view all(text.data(), static_cast<std::size_t>(result.ptr - text.data()));
    const std::size_t exponent = all.find('e');
    out.append(all.substr(0, exponent));
    if (all.find('.') == all.npos) out.append(".0");
    out.append(all.substr(exponent));
}

} // namespace

void appendText(ReplyBuffer& out, std::string_view text) { appendEscaped(out, text, false); }
void appendAttribute(ReplyBuffer& out, std::string_view text) { appendEscaped(out, text, true); }

void appendNumber(ReplyBuffer& out, std::uint64_t value)
{
    // Codes and states are most of what is published.
    if (value < 10) return out.append(static_cast<char>('0' + value));
    appendInteger(out, value);
}

void appendNumber(ReplyBuffer& out, std::int64_t value) { appendInteger(out, value); }
void appendNumber(ReplyBuffer& out, double value) { appendReal(out, value); }
void appendNumber(ReplyBuffer& out, float value) { appendReal(out, value); }

void appendChar16(ReplyBuffer& out, std::uint16_t value)
{
    char text[3];
    std::size_t length = 0;
    if (value < 0x80)
        text[length++] = static_cast<char>(value);
    else if (value < 0x800) {
        text[length++] = static_cast<char>(0xC0 | (value >> 6));
        text[length++] = static_cast<char>(0x80 | (value & 0x3F));
    } else {
        text[length++] = static_cast<char>(0xE0 | (value >> 12));
        text[length++] = static_cast<char>(0x80 | ((value >> 6) & 0x3F));
        text[length++] = static_cast<char>(0x80 | (value & 0x3F));
    }
    // Halves of surrogate pairs encode to what appendText replaces.
    appendText(out, {text, length});
}

} // namespace KDV::Host
