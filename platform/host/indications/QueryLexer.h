// Splits the text of a query into words, literals and signs, for both languages: strings in single or double quotes
// with backslash escapes or a doubled quote, integers (decimal, 0x..., ...B), reals. Belongs to one parse; errors are
// QueryError with the column.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KDV::Host {

enum class TokenKind : std::uint8_t { End, Word, Text, Integer, Real, Sign };

struct QueryToken {
    TokenKind kind = TokenKind::End;
    std::string text;            // of words and signs as written, of texts without quotes and escapes
    std::uint64_t magnitude = 0; // of integers
    double real = 0;
    std::size_t column = 0; // from 1
};

class QueryLexer {
public:
    explicit QueryLexer(std::string_view query) : _query(query) {}
    QueryToken next();

private:
    QueryToken word();
    QueryToken text(char quote);
    QueryToken number();
    QueryToken radix(std::string_view digits, unsigned base);
    void escape(std::string& to);
    char peek(std::size_t ahead = 0) const noexcept { return _at + ahead < _query.size() ? _query[_at + ahead] : '\0'; }
    [[noreturn]] void refuse(const std::string& what) const;

    std::string_view _query;
    std::size_t _at = 0;
    std::size_t _start = 0; // of the token being read
};

} // namespace KDV::Host
