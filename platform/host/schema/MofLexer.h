// Cuts a MOF text (DSP0004, annex A) into tokens. The text must outlive the lexer. A byte that starts no token, an
// unfinished string or comment, and a number that is none are MofError with the line.
#pragma once

#include "hostschema/MofError.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace KDV::Host {

enum class MofTokenKind { End, Identifier, Integer, Real, String, Character, Alias, Pragma, Symbol };

struct MofToken {
    MofTokenKind kind = MofTokenKind::End;
    unsigned line = 1;
    std::string text;         // of identifiers and symbols; the decoded text of strings
    bool negative = false;    // of numbers
    std::uint64_t number = 0; // magnitude of an integer, code of a character
    double real = 0;

    bool isSymbol(char c) const noexcept { return kind == MofTokenKind::Symbol && text[0] == c; }
    std::string shown() const; // for messages: at most a few words
};

class MofLexer {
public:
    MofLexer(std::string_view text, const std::string& file) : _text(text), _file(file) {}

    MofToken next();
    [[noreturn]] void fail(unsigned line, const std::string& what) const { throw MofError(_file, line, what); }
    const std::string& file() const noexcept { return _file; }

private:
    char at(std::size_t ahead = 0) const noexcept { return _pos + ahead < _text.size() ? _text[_pos + ahead] : '\0'; }
    void skipBlanks();
    void skipBlockComment();
    MofToken word();
    MofToken number();
    MofToken quoted(char quote);
    std::uint32_t escape();
    bool magnitude(std::string_view digits, unsigned base, std::uint64_t& value) const noexcept;

    std::string_view _text;
    std::string _file;
    std::size_t _pos = 0;
    unsigned _line = 1;
};

} // namespace KDV::Host
