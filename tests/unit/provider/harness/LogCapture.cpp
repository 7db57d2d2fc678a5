#include "harness/LogCapture.h"

#include "logger/LogSettings.h"

namespace KDV::Test {

LogCapture::LogCapture()
{
    setLogSink([this](LogLevel level, std::string_view source, std::string_view text) {
        const std::lock_guard<std::mutex> lock(_mutex);
        const auto colon = source.rfind(':');
        std::string line(colon == std::string_view::npos ? source : source.substr(colon + 1));
        line += level == LogLevel::error ? " error: " : " ";
        line += text;
        _lines.push_back(std::move(line));
        _sources.emplace_back(source);
    });
    setLogLevel(LogLevel::info);
}

LogCapture::~LogCapture()
{
    setLogLevel(LogLevel::off);
    setLogSink({});
}

std::vector<std::string> LogCapture::lines() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _lines;
}

std::vector<std::string> LogCapture::sources() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _sources;
}

std::vector<std::string> LogCapture::linesWith(const std::string& part) const
{
    std::vector<std::string> found;
    for (std::string& line : lines())
        if (line.find(part) != std::string::npos) found.push_back(std::move(line));
    return found;
}

void LogCapture::clear()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _lines.clear();
    _sources.clear();
}

void LogCapture::stop() { setLogLevel(LogLevel::off); }

} // namespace KDV::Test
