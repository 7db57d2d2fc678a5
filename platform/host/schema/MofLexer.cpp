#include "hostschema/MofLexer.h"

#include <cerrno>
#include <cstdlib>

namespace KDV::Host {

MofError::~MofError() = default;

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHex(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
// Bytes above ASCII may stand in names (DSP0004 allows them as UTF-8).
bool startsName(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool continuesName(char c) { return startsName(c) || isDigit(c); }
unsigned hexValue(char c) { return static_cast<unsigned>(isDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10); }

void appendUtf8(std::string& out, std::uint32_t code)
{
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xc0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3f));
    } else {
        out += static_cast<char>(0xe0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3f));
        out += static_cast<char>(0x80 | (code & 0x3f));
    }
}

// One character of a 'x' literal, which holds a 16-bit code; false if the bytes are no such character.
bool takeCharacter(std::string_view text, std::size_t& pos, std::uint32_t& code)
{
    const auto lead = static_cast<unsigned char>(text[pos]);
    const std::size_t length = lead < 0x80 ? 1 : (lead & 0xe0) == 0xc0 ? 2 : (lead & 0xf0) == 0xe0 ? 3 : 0;
    if (length == 0 || pos + length > text.size()) return false;
    code = length == 1 ? lead : length == 2 ? lead & 0x1fu : lead & 0x0fu;
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[pos + i]);
        if ((byte & 0xc0) != 0x80) return false;
        code = (code << 6) | (byte & 0x3fu);
    }
    pos += length;
    return true;
}

} // namespace

std::string MofToken::shown() const
{
    constexpr std::size_t longest = 40;
    const std::string cut = text.size() > longest ? text.substr(0, longest) + "..." : text;
    switch (kind) {
    case MofTokenKind::End:
        return "the end of the file";
    case MofTokenKind::Integer:
        return "the number " + (negative ? "-" + std::to_string(number) : std::to_string(number));
    case MofTokenKind::Real:
        return "a real number";
    case MofTokenKind::String:
        return "the string \"" + cut + "\"";
    case MofTokenKind::Character:
        return "a character";
    case MofTokenKind::Alias:
        return "the alias $" + cut;
    case MofTokenKind::Pragma:
        return "#pragma";
    default:
        return "\"" + cut + "\"";
    }
}

void MofLexer::skipBlockComment()
{
    const unsigned start = _line;
    _pos += 2;
    while (!(at() == '*' && at(1) == '/')) {
        if (_pos >= _text.size()) fail(start, "expected \"*/\" to end the comment that starts here");
        if (at() == '\n') ++_line;
        ++_pos;
    }
    _pos += 2;
}

void MofLexer::skipBlanks()
{
    if (_pos == 0 && _text.substr(0, 3) == "\xef\xbb\xbf") _pos = 3;
    while (_pos < _text.size()) {
        const char c = at();
        if (c == '\n') {
            ++_line;
            ++_pos;
        } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f') {
            ++_pos;
        } else if (c == '/' && at(1) == '/') {
            while (_pos < _text.size() && at() != '\n')
                ++_pos;
        } else if (c == '/' && at(1) == '*') {
            skipBlockComment();
        } else {
            return;
        }
    }
}

MofToken MofLexer::next()
{
    skipBlanks();
    MofToken token;
    token.line = _line;
    if (_pos >= _text.size()) return token;
    const char c = at();
    if (startsName(c)) return word();
    if (isDigit(c) || ((c == '+' || c == '-' || c == '.') && (isDigit(at(1)) || at(1) == '.'))) return number();
    if (c == '"' || c == '\'') return quoted(c);
    if (c == '$') {
        ++_pos;
        if (!startsName(at())) fail(_line, "expected a name after \"$\"");
        token = word();
        token.kind = MofTokenKind::Alias;
        return token;
    }
    if (c == '#') {
        ++_pos;
        if (!startsName(at())) fail(_line, "expected \"pragma\" after \"#\"");
        token = word();
        token.kind = MofTokenKind::Pragma;
        return token;
    }
    if (std::string_view("[](){}:;,=").find(c) == std::string_view::npos)
        fail(_line,
             std::string("expected a declaration, found the character \"") +
                 (c >= ' ' && c < 127 ? std::string(1, c) : "code " + std::to_string(static_cast<unsigned char>(c))) +
                 "\"");
    token.kind = MofTokenKind::Symbol;
    token.text = c;
    ++_pos;
    return token;
}

MofToken MofLexer::word()
{
    MofToken token;
    token.kind = MofTokenKind::Identifier;
    token.line = _line;
    const std::size_t start = _pos;
    while (_pos < _text.size() && continuesName(at()))
        ++_pos;
    token.text = _text.substr(start, _pos - start);
    return token;
}

bool MofLexer::magnitude(std::string_view digits, unsigned base, std::uint64_t& value) const noexcept
{
    value = 0;
    if (digits.empty()) return false;
    for (char c : digits) {
        if (!isHex(c) || hexValue(c) >= base) return false;
        if (value > (UINT64_MAX - hexValue(c)) / base) return false;
        value = value * base + hexValue(c);
    }
    return true;
}

MofToken MofLexer::number()
{
    MofToken token;
    token.line = _line;
    if (at() == '+' || at() == '-') token.negative = _text[_pos++] == '-';
    const std::size_t start = _pos;
    bool real = false;
    while (_pos < _text.size()) {
        const char c = at();
        const bool exponentSign = real && (c == '+' || c == '-') && (_text[_pos - 1] | 0x20) == 'e';
        if (!continuesName(c) && c != '.' && !exponentSign) break;
        real = real || c == '.';
        ++_pos;
    }
    const std::string text(_text.substr(start, _pos - start));
    if (real) {
        char* end = nullptr;
        errno = 0;
        token.kind = MofTokenKind::Real;
        token.real = std::strtod(text.c_str(), &end);
        const char last = text.back();
        if (*end != '\0' || errno == ERANGE || !isDigit(last) || text.find_first_of("xX") != std::string::npos)
            fail(_line, "expected a real number, found \"" + text.substr(0, 40) + "\"");
        if (token.negative) token.real = -token.real;
        return token;
    }
    token.kind = MofTokenKind::Integer;
    bool good = false;
    if (text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x')
        good = magnitude(std::string_view(text).substr(2), 16, token.number);
    else if ((text.back() | 0x20) == 'b')
        good = magnitude(std::string_view(text).substr(0, text.size() - 1), 2, token.number);
    else if (text.size() > 1 && text[0] == '0')
        good = magnitude(std::string_view(text).substr(1), 8, token.number);
    else
        good = magnitude(text, 10, token.number);
    if (!good) fail(_line, "expected an integer of at most 64 bits, found \"" + text.substr(0, 40) + "\"");
    return token;
}

std::uint32_t MofLexer::escape()
{
    const char c = at();
    ++_pos;
    switch (c) {
    case 'b':
        return '\b';
    case 't':
        return '\t';
    case 'n':
        return '\n';
    case 'f':
        return '\f';
    case 'r':
        return '\r';
    case '"':
    case '\'':
    case '\\':
        return static_cast<unsigned char>(c);
    case 'x':
    case 'X': {
        std::uint32_t code = 0;
        unsigned digits = 0;
        for (; digits < 4 && isHex(at()); ++digits, ++_pos)
            code = code * 16 + hexValue(at());
        // Texts are passed on as C strings, so a NUL inside would cut them silently.
        if (digits == 0 || code == 0) fail(_line, "expected 1 to 4 hexadecimal digits, not all zero, after \"\\x\"");
        if (code >= 0xd800 && code <= 0xdfff)
            fail(_line, "expected a character after \"\\x\", found half of a surrogate pair");
        return code;
    }
    default:
        fail(_line, "expected one of b t n f r \" ' \\ x after a backslash");
    }
}

MofToken MofLexer::quoted(char quote)
{
    MofToken token;
    token.kind = quote == '"' ? MofTokenKind::String : MofTokenKind::Character;
    token.line = _line;
    ++_pos;
    unsigned characters = 0;
    while (at() != quote || _pos >= _text.size()) {
        if (_pos >= _text.size() || at() == '\n' || at() == '\0')
            fail(token.line, std::string("expected ") + quote + " to end the text that starts here");
        std::uint32_t code = 0;
        if (at() == '\\') {
            ++_pos;
            code = escape();
            appendUtf8(token.text, code);
        } else if (quote == '\'') {
            if (!takeCharacter(_text, _pos, code)) fail(token.line, "expected a character of 16 bits");
        } else {
            token.text += _text[_pos++];
        }
        token.number = code;
        ++characters;
    }
    ++_pos;
    if (quote == '\'' && characters != 1) fail(token.line, "expected one character between the apostrophes");
    return token;
}

} // namespace KDV::Host
