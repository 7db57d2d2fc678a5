#include "common/ComputerSystemSettings.h"

#include "common/KDVUtil.h"
#include "logger/Logger.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

namespace KDV {
namespace {

constexpr std::size_t largestFile = 65536;

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

bool isWord(std::string_view text)
{
    return !text.empty() && isLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), [](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

// Names between slashes, "root/cimv2".
bool isNameSpace(std::string_view text)
{
    while (true) {
        const std::size_t slash = text.find('/');
        const std::string_view name = text.substr(0, slash);
        if (name.empty() || !std::all_of(name.begin(), name.end(), [](char c) {
                return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
            }))
            return false;
        if (slash == std::string_view::npos) return true;
        text.remove_prefix(slash + 1);
    }
}

std::string parseLine(std::string_view line, ComputerSystemSettings& settings)
{
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return "expected \"class = ...\" or \"namespace = ...\"";
    const std::string_view name = trimmed(line.substr(0, equals));
    const std::string_view value = trimmed(line.substr(equals + 1));
    if (name == "class") {
        if (!isWord(value)) return "expected the name of a class";
        settings.className = value;
    } else if (name == "namespace") {
        if (!isNameSpace(value)) return "expected a namespace such as root/cimv2";
        settings.nameSpace = value;
    } else {
        return "unknown setting; expected class or namespace";
    }
    return {};
}

ComputerSystemSettings readSettings()
{
    ComputerSystemSettings settings;
    const std::string file = KDVUtil::configurationDirectory() + "computer-system.conf";
    const Logger log("KDVCommon");
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        if (errno != ENOENT && errno != ENOTDIR) log.error("%s: %s", file.c_str(), std::strerror(errno));
        return settings;
    }
    std::string text(largestFile + 1, '\0');
    stream.read(&text[0], static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    if (text.size() > largestFile || stream.bad()) {
        log.error("%s: cannot be read or is longer than %zu bytes", file.c_str(), largestFile);
        return settings;
    }
    std::vector<std::string> mistakes;
    parseComputerSystemSettings(text, settings, mistakes);
    for (const std::string& mistake : mistakes)
        log.error("%s: %s", file.c_str(), mistake.c_str());
    return settings;
}

} // namespace

void parseComputerSystemSettings(std::string_view text, ComputerSystemSettings& settings,
                                 std::vector<std::string>& mistakes)
{
    for (unsigned number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == '#') continue;
        const std::string mistake = parseLine(line, settings);
        if (!mistake.empty()) mistakes.push_back("line " + std::to_string(number) + ": " + mistake);
    }
}

const ComputerSystemSettings& computerSystemSettings()
{
    static const ComputerSystemSettings& settings = *new ComputerSystemSettings(readSettings());
    return settings;
}

} // namespace KDV
