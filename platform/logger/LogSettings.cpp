#include "logger/LogSettings.h"

#include "logger/LogSinks.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <mutex>

namespace {

constexpr std::string_view sinkChoices = "syslog, stderr or file:/path";
constexpr std::string_view levelChoices = "error, info or off";
constexpr std::size_t maximumFile = 65536; // what lies beyond is not read

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string expected(std::string_view where, std::string_view choices, std::string_view found)
{
    std::string text(where);
    text.append(": expected ").append(choices).append(", found \"").append(found).append("\"");
    return text;
}

// One line of the file; an empty result means that it was right.
std::string parseLine(std::string_view line, LogSettings& settings)
{
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return expected("line", "key = value", line);
    const std::string_view key = trimmed(line.substr(0, equals));
    const std::string_view value = trimmed(line.substr(equals + 1));
    if (key == "sink") return parseLogTarget(value, settings) ? std::string() : expected(key, sinkChoices, value);
    if (key == "level")
        return parseLogLevel(value, settings.level) ? std::string() : expected(key, levelChoices, value);
    return expected("key", "sink or level", key);
}

std::string configurationFile()
{
    const char* directory = std::getenv("KDV_CONFIG_DIR");
    std::string path = directory && *directory ? directory : "/etc/cim/zt-kdv";
    if (path.back() != '/') path += '/';
    return path + "logger.conf";
}

void readFile(LogSettings& settings, std::vector<std::string>& mistakes)
{
    const std::string path = configurationFile();
    const auto cannotRead = [&] { mistakes.push_back(path + ": cannot be read: " + std::strerror(errno)); };
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        if (errno != ENOENT && errno != ENOTDIR) cannotRead();
        return;
    }
    std::string text(maximumFile, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad()) {
        cannotRead();
        return;
    }
    text.resize(static_cast<std::size_t>(file.gcount()));
    const std::size_t before = mistakes.size();
    parseLogConfiguration(text, settings, mistakes);
    for (std::size_t i = before; i < mistakes.size(); ++i)
        mistakes[i] = path + ":" + mistakes[i];
}

void report(const std::vector<std::string>& mistakes)
{
    if (logLevel() == LogLevel::off) return;
    for (const std::string& mistake : mistakes) {
        char text[maximumText];
        const std::size_t size = makePrintable(mistake, text, sizeof text);
        writeLine(LogLevel::error, "KDVLogger", std::string_view(text, size));
    }
}

void configure()
{
    std::vector<std::string> mistakes;
    const LogSettings settings = readLogSettings(mistakes);
    setLogLevel(settings.level);
    report(mistakes); // while the default sink is still in force
    if (!applyLogSettings(settings)) report({settings.file + ": cannot be opened: " + std::strerror(errno)});
}

} // namespace

bool parseLogLevel(std::string_view text, LogLevel& level)
{
    if (text == "off")
        level = LogLevel::off;
    else if (text == "error")
        level = LogLevel::error;
    else if (text == "info")
        level = LogLevel::info;
    else
        return false;
    return true;
}

bool parseLogTarget(std::string_view text, LogSettings& settings)
{
    constexpr std::string_view filePrefix = "file:/";
    if (text == "syslog") {
        settings.target = LogTarget::syslog;
    } else if (text == "stderr") {
        settings.target = LogTarget::standardError;
    } else if (text.size() > filePrefix.size() && text.substr(0, filePrefix.size()) == filePrefix) {
        settings.target = LogTarget::file;
        settings.file = text.substr(filePrefix.size() - 1);
        return true;
    } else {
        return false;
    }
    settings.file.clear();
    return true;
}

void parseLogConfiguration(std::string_view text, LogSettings& settings, std::vector<std::string>& mistakes)
{
    for (unsigned number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == '#') continue;
        const std::string mistake = parseLine(line, settings);
        if (!mistake.empty()) mistakes.push_back(std::to_string(number) + ": " + mistake);
    }
}

LogSettings readLogSettings(std::vector<std::string>& mistakes)
{
    LogSettings settings;
    readFile(settings, mistakes);
    const char* sink = std::getenv("KDV_LOG");
    if (sink && *sink && !parseLogTarget(sink, settings)) mistakes.push_back(expected("KDV_LOG", sinkChoices, sink));
    const char* level = std::getenv("KDV_LOG_LEVEL");
    if (level && *level && !parseLogLevel(level, settings.level))
        mistakes.push_back(expected("KDV_LOG_LEVEL", levelChoices, level));
    return settings;
}

void configureOnce()
{
    static std::once_flag once;
    std::call_once(once, configure);
}
