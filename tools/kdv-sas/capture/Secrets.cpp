#include "capture/Secrets.h"

#include "sashba/sysfs/DeviceText.h"

#include <algorithm>
#include <cctype>

namespace KdvSas {
namespace {

constexpr std::size_t addressDigits = 16;
constexpr std::size_t longDigits = 32;

bool isHex(char letter) { return std::isxdigit(static_cast<unsigned char>(letter)) != 0; }
bool isWordLetter(char letter) { return std::isalnum(static_cast<unsigned char>(letter)) != 0; }

std::string bytesOf(std::string_view digits)
{
    std::string bytes;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
        bytes += static_cast<char>(KDV::wholeNumber("0x" + std::string(digits.substr(at, 2))).value_or(0));
    return bytes;
}

// A registered name begins with its kind; longer runs of digits without one are something else.
bool mayBeName(std::string_view digits)
{
    const char kind = digits.front();
    return digits.size() == addressDigits ? kind == '2' || kind == '3' || kind == '5' || kind == '6' : kind == '6';
}

// What makers write where they have nothing to write.
bool isPlaceholder(std::string_view text)
{
    constexpr std::string_view placeholders[] = {
        "none",           "null",          "unknown",       "default",
        "default string", "not available", "not specified", "to be filled by o.e.m."};
    std::string lower(text);
    for (char& letter : lower)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return std::find(std::begin(placeholders), std::end(placeholders), lower) != std::end(placeholders);
}

} // namespace

void Secrets::addText(std::string_view text)
{
    constexpr std::size_t fewest = 4;
    const std::string_view inner = KDV::trimmed(text);
    const auto letters = std::count_if(inner.begin(), inner.end(), isWordLetter);
    const bool printable = std::all_of(inner.begin(), inner.end(), [](char c) { return c >= ' ' && c < 0x7F; });
    if (letters < static_cast<std::ptrdiff_t>(fewest) || !printable || isPlaceholder(inner)) return;
    const bool oneLetter =
        std::all_of(inner.begin(), inner.end(), [&](char c) { return c == inner.front() || !isWordLetter(c); });
    if (!oneLetter) texts.emplace(inner);
}

void Secrets::addHostName(std::string_view name)
{
    constexpr std::size_t fewest = 3;
    for (const std::string_view each : {name, name.substr(0, name.find('.'))}) {
        if (each.size() >= fewest && each != "localhost" && texts.count(std::string(each)) == 0) words.emplace(each);
    }
}

void Secrets::addAddress(std::uint64_t address)
{
    constexpr std::uint64_t smallest = std::uint64_t{1} << 40;
    if (address >= smallest && address != ~std::uint64_t{0}) addresses.insert(address);
}

void Secrets::addLongName(std::string_view bytes)
{
    if (bytes.size() == 16 && bytes.find_first_not_of(bytes.front()) != std::string_view::npos)
        longNames.emplace(bytes);
}

bool Secrets::addHexName(std::string_view text)
{
    for (const std::string_view start : {"0x", "naa.", "eui."}) {
        if (text.substr(0, start.size()) == start) text.remove_prefix(start.size());
    }
    if (!std::all_of(text.begin(), text.end(), isHex)) return false;
    if (text.size() == addressDigits) {
        addAddress(KDV::wholeNumber("0x" + std::string(text)).value_or(0));
        return true;
    }
    if (text.size() == longDigits) {
        addLongName(bytesOf(text));
        return true;
    }
    return false;
}

void Secrets::addHexNamesIn(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        if (!isHex(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && isHex(text[end]))
            ++end;
        std::string_view run = text.substr(at, end - at);
        if (run == "0" && end < text.size() && (text[end] | 0x20) == 'x') { // "0x"
            at = end + 1;
            continue;
        }
        if ((run.size() == addressDigits || run.size() == longDigits) && mayBeName(run)) addHexName(run);
        at = end;
    }
}

} // namespace KdvSas
