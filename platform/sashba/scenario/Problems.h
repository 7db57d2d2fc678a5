// What is wrong with a file: each problem names its place (a JSON pointer, or line and column where the text is no
// JSON) and what was expected there. The list is bounded, so that a file that is wrong all over gives one readable
// message.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace KDV {

class Problems {
public:
    static constexpr std::size_t shown = 20;

    void add(std::string_view place, std::string_view expected);

    bool empty() const noexcept { return _count == 0; }
    std::size_t count() const noexcept { return _count; }

    // All in one line: "place: expected ...; place: expected ..."
    std::string text() const;

private:
    std::vector<std::string> _texts;
    std::size_t _count = 0;
};

// A piece of the file for a message: in quotes, short, and nothing that is not printable.
std::string inQuotes(std::string_view text);

// A child's place; the name is escaped as RFC 6901 asks.
std::string childPlace(const std::string& place, std::string_view name);
std::string childPlace(const std::string& place, std::size_t index);

// The candidate that was probably meant, or empty when none is near.
std::string_view nearestOf(std::string_view word, const std::vector<std::string_view>& candidates);

} // namespace KDV
