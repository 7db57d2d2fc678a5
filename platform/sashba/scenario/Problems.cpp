#include "sashba/scenario/Problems.h"

#include "sashba/PrintableText.h"

#include <algorithm>
#include <numeric>

namespace KDV {

void Problems::add(std::string_view place, std::string_view expected)
{
    ++_count;
    if (_texts.size() < shown)
        _texts.push_back(std::string(place.empty() ? "/" : place) + ": " + std::string(expected));
}

std::string Problems::text() const
{
    std::string all;
    for (const std::string& one : _texts)
        all += (all.empty() ? "" : "; ") + one;
    if (_count > _texts.size()) all += "; and " + std::to_string(_count - _texts.size()) + " more";
    return all;
}

std::string inQuotes(std::string_view text)
{
    constexpr std::size_t longest = 40;
    const std::string printable = printableText(text, longest);
    return '"' + printable + (text.size() > longest ? "...\"" : "\"");
}

std::string childPlace(const std::string& place, std::string_view name)
{
    std::string child = place + '/';
    for (const char letter : printableText(name, 80)) {
        if (letter == '~')
            child += "~0";
        else if (letter == '/')
            child += "~1";
        else
            child += letter;
    }
    return child;
}

std::string childPlace(const std::string& place, std::size_t index) { return place + '/' + std::to_string(index); }

namespace {

// Levenshtein's distance.
std::size_t editsBetween(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

} // namespace

std::string_view nearestOf(std::string_view word, const std::vector<std::string_view>& candidates)
{
    std::string_view nearest;
    if (word.size() > 40) return nearest;
    std::size_t fewest = word.size() / 3 + 2;
    for (const std::string_view candidate : candidates) {
        const std::size_t edits = editsBetween(word, candidate);
        if (edits < fewest) {
            fewest = edits;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace KDV
