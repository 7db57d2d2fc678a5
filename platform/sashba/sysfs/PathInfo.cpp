#include "sashba/sysfs/PathInfo.h"

#include "sashba/sysfs/DeviceText.h"

#include <algorithm>
#include <cctype>

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
            info.box = wholeNumber(nextWord(line));
        } else if (word == "BAY:") {
            info.bay = wholeNumber(nextWord(line));
        } else if (word == "Active") {
            active = true;
        }
    }
    if (!info.bay) return std::nullopt;
    return info;
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
