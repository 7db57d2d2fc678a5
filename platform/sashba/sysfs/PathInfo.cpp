#include "sashba/sysfs/PathInfo.h"

#include "sashba/sysfs/DeviceText.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace KDV {
namespace {

std::string_view nextWord(std::string_view& line)
{
    line = trimmed(line);
    const std::size_t end = std::min(line.find_first_of(" \t\r"), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(end);
    return word;
}

bool isPortName(std::string_view word)
{
    return !word.empty() && word.size() <= 8 && std::all_of(word.begin(), word.end(), [](unsigned char letter) {
        return std::isalnum(letter) != 0 && letter < 0x80;
    });
}

// The firmware keeps these in bytes, and 255 is its word for "none".
std::optional<std::uint64_t> knownNumber(std::string_view word)
{
    const std::optional<std::uint64_t> number = wholeNumber(word);
    return number && *number < 255 ? number : std::nullopt;
}

std::optional<PathInfo> parseLine(std::string_view line, bool& active)
{
    PathInfo info;
    active = false;
    for (std::string_view word = nextWord(line); !word.empty(); word = nextWord(line)) {
        if (word == "PORT:") {
            std::string_view ahead = line;
            if (const std::string_view port = nextWord(ahead); isPortName(port)) {
                info.port = std::string(port);
                line = ahead;
            }
        } else if (word == "BOX:") {
            info.box = knownNumber(nextWord(line));
        } else if (word == "BAY:") {
            info.bay = knownNumber(nextWord(line));
        } else if (word == "Active") {
            active = true;
        }
    }
    const bool tellsNothing = info.port.empty() && !info.box && !info.bay; // as of a volume
    return tellsNothing ? std::nullopt : std::optional<PathInfo>(std::move(info));
}

} // namespace

std::optional<PathInfo> parsePathInfo(std::string_view text)
{
    std::optional<PathInfo> first;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        bool active = false;
        std::optional<PathInfo> info = parseLine(text.substr(0, end), active);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (info && active) return info;
        if (info && !first) first = std::move(info);
    }
    return first;
}

} // namespace KDV
