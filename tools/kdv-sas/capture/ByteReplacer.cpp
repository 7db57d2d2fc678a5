#include "capture/ByteReplacer.h"

#include <algorithm>
#include <cctype>

namespace KdvSas {
namespace {

std::string digitsOf(std::string_view bytes, std::string_view between = {})
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        if (!text.empty()) text += between;
        text += {digits[byte >> 4], digits[byte & 15]};
    }
    return text;
}

std::string bytesOf(std::uint64_t value)
{
    std::string bytes(8, '\0');
    for (std::size_t at = bytes.size(); at > 0; value >>= 8)
        bytes[--at] = static_cast<char>(value & 0xFF);
    return bytes;
}

std::string lower(std::string_view text)
{
    std::string made(text);
    for (char& letter : made)
        letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter | 0x20 : letter);
    return made;
}

bool isWordLetter(char letter) { return std::isalnum(static_cast<unsigned char>(letter)) != 0; }

bool standsAlone(std::string_view bytes, std::size_t at, std::size_t length)
{
    return (at == 0 || !isWordLetter(bytes[at - 1])) &&
           (at + length == bytes.size() || !isWordLetter(bytes[at + length]));
}

// Digits in the case in which the original stood.
void put(std::string& to, std::size_t at, const std::string& digits, std::string_view original)
{
    const bool upper = std::any_of(original.begin(), original.end(), [](char c) { return c >= 'A' && c <= 'F'; });
    for (std::size_t i = 0; i < digits.size(); ++i)
        to[at + i] = static_cast<char>(upper ? std::toupper(static_cast<unsigned char>(digits[i])) : digits[i]);
}

} // namespace

void ByteReplacer::Table::add(const std::string& original, Pattern pattern)
{
    if (original.size() < 2) return;
    const auto start = static_cast<std::size_t>(static_cast<unsigned char>(original[0]) << 8 |
                                                static_cast<unsigned char>(original[1]));
    _starts[start] = 1;
    _byLength[original.size()].emplace(original, std::move(pattern));
}

const ByteReplacer::Pattern* ByteReplacer::Table::longestAt(std::string_view bytes, std::size_t at) const
{
    if (at + 2 > bytes.size()) return nullptr;
    const auto start = static_cast<std::size_t>(static_cast<unsigned char>(bytes[at]) << 8 |
                                                static_cast<unsigned char>(bytes[at + 1]));
    if (_starts[start] == 0) return nullptr;
    for (const auto& [length, patterns] : _byLength) {
        if (at + length > bytes.size()) continue;
        const auto found = patterns.find(std::string(bytes.substr(at, length)));
        if (found != patterns.end() && (!found->second.wholeWord || standsAlone(bytes, at, length)))
            return &found->second;
    }
    return nullptr;
}

ByteReplacer::ByteReplacer(const Substitutes& substitutes)
{
    for (const auto& [address, substitute] : substitutes.addresses)
        addAddress(address, substitute);
    for (const auto& [name, substitute] : substitutes.longNames)
        addLongName(name, substitute);
    for (const auto& [text, substitute] : substitutes.texts)
        addText(text, substitute);
    for (const auto& [word, substitute] : substitutes.words)
        _exact.add(word, {substitute, true});
}

void ByteReplacer::addDigits(const std::string& bytes, const std::string& substitute)
{
    _digits.add(digitsOf(bytes), {digitsOf(substitute), false});
    _digits.add(digitsOf(bytes, ":"), {digitsOf(substitute, ":"), false});
}

void ByteReplacer::addAddress(std::uint64_t address, std::uint64_t substitute)
{
    std::string bytes = bytesOf(address);
    std::string other = bytesOf(substitute);
    addDigits(bytes, other);
    _exact.add(bytes, {other, false});
    std::reverse(bytes.begin(), bytes.end());
    std::reverse(other.begin(), other.end());
    _exact.add(bytes, {other, false});
}

void ByteReplacer::addLongName(const std::string& name, const std::string& substitute)
{
    addDigits(name, substitute);
    _exact.add(name, {substitute, false});
}

void ByteReplacer::addText(const std::string& text, const std::string& substitute)
{
    constexpr std::size_t sureLength = 6; // shorter ones turn up in other words by chance, and so do numbers
    constexpr std::size_t sureDigits = 10;
    const bool number = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    _exact.add(text, {substitute, text.size() < (number ? sureDigits : sureLength)});
    if (text.size() >= sureLength) addDigits(text, substitute);
}

std::string ByteReplacer::run(std::string_view bytes, bool namesOnly, std::vector<bool>* putIn) const
{
    std::string made(bytes);
    if (putIn) putIn->assign(bytes.size(), false);
    const std::string folded = lower(bytes);
    for (std::size_t at = 0; at < bytes.size();) {
        const Pattern* exact = namesOnly ? nullptr : _exact.longestAt(bytes, at);
        const Pattern* digits = _digits.longestAt(folded, at);
        const std::size_t length =
            std::max(exact ? exact->substitute.size() : 0, digits ? digits->substitute.size() : 0);
        if (length == 0) {
            ++at;
            continue;
        }
        if (digits && digits->substitute.size() == length)
            put(made, at, digits->substitute, bytes.substr(at, length));
        else
            made.replace(at, length, exact->substitute);
        if (putIn) std::fill_n(putIn->begin() + static_cast<std::ptrdiff_t>(at), length, true);
        at += length;
    }
    return made;
}

std::string ByteReplacer::replaced(std::string_view bytes, std::vector<bool>* putIn) const
{
    return run(bytes, false, putIn);
}

std::string ByteReplacer::replacedNames(std::string_view bytes) const { return run(bytes, true, nullptr); }

} // namespace KdvSas
