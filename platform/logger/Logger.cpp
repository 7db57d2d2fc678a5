#include "logger/Logger.h"

#include "logger/LogSinks.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <functional>
#include <mutex>

// One source text, kept for the life of the process and found again by the source that it extends and what was added.
class LogSource {
public:
    LogSource(const LogSource* base, std::string_view added, std::size_t hash, const LogSource* next)
        : _base(base), _text(base ? base->_text + std::string(added) : std::string(added)), _added(added.size()),
          _hash(hash), _next(next)
    {
    }

    const std::string& text() const noexcept { return _text; }
    const LogSource* next() const noexcept { return _next; }

    bool is(const LogSource* base, std::string_view added, std::size_t hash) const noexcept
    {
        return _hash == hash && _base == base && _added == added.size() &&
               std::string_view(_text).substr(_text.size() - _added) == added;
    }

private:
    const LogSource* _base;
    std::string _text;
    std::size_t _added;
    std::size_t _hash;
    const LogSource* _next;
};

namespace {

// Sources are few (a hundred or so), objects that ask for one are many: buckets are read without a lock and chains only
// ever grow at their front.
constexpr std::size_t bucketCount = 512;
std::atomic<const LogSource*> buckets[bucketCount];
std::mutex growing;

const LogSource* find(const LogSource* first, const LogSource* base, std::string_view added, std::size_t hash) noexcept
{
    while (first && !first->is(base, added, hash))
        first = first->next();
    return first;
}

const LogSource* intern(const LogSource* base, std::string_view added)
{
    const std::size_t hash = std::hash<std::string_view>()(added) ^ (reinterpret_cast<std::size_t>(base) >> 4);
    auto& bucket = buckets[hash % bucketCount];
    if (const LogSource* known = find(bucket.load(std::memory_order_acquire), base, added, hash)) return known;
    std::lock_guard<std::mutex> lock(growing);
    const LogSource* first = bucket.load(std::memory_order_relaxed);
    const LogSource* known = find(first, base, added, hash);
    if (!known) {
        known = new LogSource(base, added, hash, first);
        bucket.store(known, std::memory_order_release);
    }
    return known;
}

void writeFormatted(LogLevel level, const std::string& source, const char* format, std::va_list arguments)
    __attribute__((format(printf, 3, 0)));

void writeFormatted(LogLevel level, const std::string& source, const char* format, std::va_list arguments)
{
    // Both buffers bound the line. What vsnprintf cuts is longer than what makePrintable lets through.
    char raw[maximumText + 4];
    char text[maximumText];
    const int wanted = std::vsnprintf(raw, sizeof raw, format, arguments);
    if (wanted < 0) return;
    const std::size_t length = std::min(static_cast<std::size_t>(wanted), sizeof raw - 1);
    const std::size_t size = makePrintable(std::string_view(raw, length), text, sizeof text);
    char name[maximumLine - maximumText - 64];
    const std::size_t nameSize = makePrintable(source, name, sizeof name);
    writeLine(level, std::string_view(name, nameSize), std::string_view(text, size));
}

bool isOff(LogLevel level) noexcept { return levelInForce.load(std::memory_order_relaxed) < level; }

} // namespace

Logger::Logger(std::string_view source)
{
    configureOnce();
    _source = intern(nullptr, source);
}

void Logger::appendLogSource(std::string_view text) { _source = intern(_source, text); }

void Logger::info(const char* format, ...) const
{
    if (isOff(LogLevel::info)) return;
    std::va_list arguments;
    va_start(arguments, format);
    writeFormatted(LogLevel::info, source(), format, arguments);
    va_end(arguments);
}

void Logger::error(const char* format, ...) const
{
    if (isOff(LogLevel::error)) return;
    std::va_list arguments;
    va_start(arguments, format);
    writeFormatted(LogLevel::error, source(), format, arguments);
    va_end(arguments);
}

const std::string& Logger::source() const noexcept { return _source->text(); }
