#include "sashba/sysfs/DeviceText.h"

#include <cctype>
#include <limits>

namespace KDV {
namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

int digitValue(char letter)
{
    if (isDigit(letter)) return letter - '0';
    const char lower = static_cast<char>(letter | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 99;
}

// The digits at the front, without leading zeros, and how many letters they were.
std::string_view leadingNumber(std::string_view text, std::size_t& letters)
{
    letters = 0;
    while (letters < text.size() && isDigit(text[letters]))
        ++letters;
    std::string_view digits = text.substr(0, letters);
    while (digits.size() > 1 && digits.front() == '0')
        digits.remove_prefix(1);
    return digits;
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view around(" \t\r\n\v\f\0", 7);
    const std::size_t first = text.find_first_not_of(around);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(around) - first + 1);
}

std::optional<std::uint64_t> wholeNumber(std::string_view text)
{
    unsigned base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) return std::nullopt;
    std::uint64_t value = 0;
    for (const char letter : text) {
        const auto digit = static_cast<unsigned>(digitValue(letter));
        if (digit >= base || value > (std::numeric_limits<std::uint64_t>::max() - digit) / base) return std::nullopt;
        value = value * base + digit;
    }
    return value;
}

bool naturalLess(std::string_view left, std::string_view right)
{
    const std::string_view wholeLeft = left;
    const std::string_view wholeRight = right;
    while (!left.empty() && !right.empty()) {
        std::size_t leftLetters = 0;
        std::size_t rightLetters = 0;
        const std::string_view leftNumber = leadingNumber(left, leftLetters);
        const std::string_view rightNumber = leadingNumber(right, rightLetters);
        if (leftLetters > 0 && rightLetters > 0) {
            if (leftNumber != rightNumber)
                return leftNumber.size() != rightNumber.size() ? leftNumber.size() < rightNumber.size()
                                                               : leftNumber < rightNumber;
            left.remove_prefix(leftLetters);
            right.remove_prefix(rightLetters);
            continue;
        }
        if (left.front() != right.front())
            return static_cast<unsigned char>(left.front()) < static_cast<unsigned char>(right.front());
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    if (left.empty() != right.empty()) return left.empty();
    return wholeLeft < wholeRight; // "01" and "1": some order, and always the same
}

std::string hex16(std::uint64_t value)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text(16, '0');
    for (std::size_t at = text.size(); at > 0; value >>= 4)
        text[--at] = digits[value & 15];
    return text;
}

} // namespace KDV
