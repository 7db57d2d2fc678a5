#include "indications/QueryLexer.h"

#include "indications/QueryError.h"

#include <cerrno>
#include <clocale>
#include <cstdlib>

namespace KDV::Host {

namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) noexcept { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
// Bytes of UTF-8 beyond ASCII may stand in names of CIM.
bool startsWord(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool isBlank(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

unsigned hexValue(char c) noexcept { return static_cast<unsigned>(isDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10); }

void appendUtf8(std::string& to, unsigned code)
{
    if (code < 0x80) {
        to += static_cast<char>(code);
    } else if (code < 0x800) {
        to += static_cast<char>(0xc0 | (code >> 6));
        to += static_cast<char>(0x80 | (code & 0x3f));
    } else {
        to += static_cast<char>(0xe0 | (code >> 12));
        to += static_cast<char>(0x80 | ((code >> 6) & 0x3f));
        to += static_cast<char>(0x80 | (code & 0x3f));
    }
}

// strtod reads the locale's decimal point; a query always has a point.
double realOf(std::string digits)
{
    const char* point = std::localeconv()->decimal_point;
    if (const std::size_t at = digits.find('.'); at != std::string::npos && point && *point)
        digits.replace(at, 1, point);
    return std::strtod(digits.c_str(), nullptr);
}

} // namespace

void QueryLexer::refuse(const std::string& what) const
{
    throw QueryError(CMPI_RC_ERR_INVALID_QUERY, "column " + std::to_string(_start + 1) + ": " + what);
}

QueryToken QueryLexer::next()
{
    while (_at < _query.size() && isBlank(_query[_at]))
        ++_at;
    _start = _at;
    QueryToken token;
    token.column = _start + 1;
    if (_at == _query.size()) return token;
    const char c = peek();
    if (startsWord(c)) return word();
    if (c == '\'' || c == '"') return text(c);
    if (isDigit(c) || (c == '.' && isDigit(peek(1)))) return number();
    token.kind = TokenKind::Sign;
    const std::string_view two = _query.substr(_at, 2);
    if (two == "<>" || two == "<=" || two == ">=" || two == "!=" || two == "::")
        token.text = two;
    else if (std::string_view("=<>()[],.*+-").find(c) != std::string_view::npos)
        token.text = c;
    else
        refuse("this character has no place in a query");
    _at += token.text.size();
    return token;
}

QueryToken QueryLexer::word()
{
    while (_at < _query.size() && (startsWord(peek()) || isDigit(peek())))
        ++_at;
    QueryToken token;
    token.kind = TokenKind::Word;
    token.column = _start + 1;
    token.text = _query.substr(_start, _at - _start);
    return token;
}

QueryToken QueryLexer::text(char quote)
{
    QueryToken token;
    token.kind = TokenKind::Text;
    token.column = _start + 1;
    for (++_at;;) {
        if (_at >= _query.size()) refuse("the text has no closing quote");
        const char c = _query[_at++];
        if (c == '\0') refuse("a text must not hold a NUL");
        if (c == '\\') {
            escape(token.text);
        } else if (c != quote) {
            token.text += c;
        } else if (peek() == quote) {
            token.text += quote;
            ++_at;
        } else {
            return token;
        }
    }
}

void QueryLexer::escape(std::string& to)
{
    const char c = peek();
    ++_at;
    switch (c) {
    case '\'':
    case '"':
    case '\\':
        to += c;
        return;
    case 'n':
        to += '\n';
        return;
    case 'r':
        to += '\r';
        return;
    case 't':
        to += '\t';
        return;
    case 'b':
        to += '\b';
        return;
    case 'f':
        to += '\f';
        return;
    case 'u':
        break;
    default:
        refuse("unknown escape in a text");
    }
    unsigned code = 0;
    for (int i = 0; i < 4; ++i, ++_at) {
        if (!isHexDigit(peek())) refuse("\\u needs four hexadecimal digits");
        code = code * 16 + hexValue(peek());
    }
    if (code == 0 || (code >= 0xd800 && code < 0xe000)) refuse("\\u names no character");
    appendUtf8(to, code);
}

QueryToken QueryLexer::radix(std::string_view digits, unsigned base)
{
    QueryToken token;
    token.kind = TokenKind::Integer;
    token.column = _start + 1;
    if (digits.empty()) refuse("a number needs digits");
    for (char c : digits) {
        const unsigned digit = hexValue(c);
        if (digit >= base) refuse("a digit that the number cannot have");
        if (token.magnitude > (UINT64_MAX - digit) / base) refuse("the number is too large");
        token.magnitude = token.magnitude * base + digit;
    }
    return token;
}

QueryToken QueryLexer::number()
{
    const auto skipDigits = [this] {
        while (isDigit(peek()))
            ++_at;
    };
    QueryToken token;
    if (peek() == '0' && (peek(1) == 'x' || peek(1) == 'X')) {
        _at += 2;
        const std::size_t first = _at;
        while (isHexDigit(peek()))
            ++_at;
        token = radix(_query.substr(first, _at - first), 16);
    } else {
        skipDigits();
        const bool point = peek() == '.';
        if (point) {
            ++_at;
            skipDigits();
        }
        const bool exponent = (peek() == 'e' || peek() == 'E') &&
                              (isDigit(peek(1)) || ((peek(1) == '+' || peek(1) == '-') && isDigit(peek(2))));
        if (exponent) {
            _at += 2;
            skipDigits();
        }
        const std::string_view digits = _query.substr(_start, _at - _start);
        if (point || exponent) {
            token.kind = TokenKind::Real;
            token.column = _start + 1;
            token.real = realOf(std::string(digits));
        } else if (peek() == 'B' || peek() == 'b') {
            ++_at;
            token = radix(digits, 2);
        } else {
            token = radix(digits, 10);
        }
    }
    if (startsWord(peek()) || isDigit(peek())) refuse("a number must end before a letter");
    return token;
}

} // namespace KDV::Host
