// Puts the stand-ins of secrets in their places in any bytes, however they are written there: texts as they are and as
// their digits, world-wide names in binary of either byte order, as digits in either case and with colons. The longest
// fitting secret goes first; the length of the bytes stays. Throws std::bad_alloc only.
#pragma once

#include "capture/Substitutes.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace KdvSas {

class ByteReplacer {
public:
    explicit ByteReplacer(const Substitutes& substitutes);

    void addText(const std::string& text, const std::string& substitute);

    // Where a pointer is given, each byte that was put in is marked there.
    std::string replaced(std::string_view bytes, std::vector<bool>* putIn = nullptr) const;

    // World-wide names as digits alone: for names of the kernel, which no device chose.
    std::string replacedNames(std::string_view bytes) const;

private:
    struct Pattern {
        std::string substitute;
        bool wholeWord = false;
    };

    // Looks up patterns by length; the first two bytes tell which lengths to try.
    class Table {
    public:
        void add(const std::string& original, Pattern pattern);
        const Pattern* longestAt(std::string_view bytes, std::size_t at) const;

    private:
        std::vector<std::uint8_t> _starts = std::vector<std::uint8_t>(65536, 0);
        std::map<std::size_t, std::unordered_map<std::string, Pattern>, std::greater<>> _byLength;
    };

    void addAddress(std::uint64_t address, std::uint64_t substitute);
    void addLongName(const std::string& name, const std::string& substitute);
    void addDigits(const std::string& bytes, const std::string& substitute);
    std::string run(std::string_view bytes, bool namesOnly, std::vector<bool>* putIn) const;

    Table _exact;  // binary names and texts
    Table _digits; // in lower case
};

} // namespace KdvSas
