#include "logger/LogSinks.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <mutex>
#include <syslog.h>
#include <unistd.h>
#include <utility>

std::atomic<LogLevel> levelInForce{LogLevel::error};

namespace {

enum class Route { syslog, standardError, file, function };

// Nothing here is ever destroyed: lines may still come from destructors of static objects.
struct Sinks {
    std::atomic<Route> route{Route::syslog};
    std::atomic<Route> configured{Route::syslog}; // in force again when the function is taken away
    std::atomic<int> file{-1};
    std::mutex settings; // changes of the three above
    std::mutex calls;    // held while the function runs
    LogSink function;
};

Sinks& sinks() noexcept
{
    static Sinks& all = *new Sinks;
    return all;
}

thread_local bool insideFunction = false;

const char* nameOf(LogLevel level) noexcept { return level == LogLevel::info ? "info" : "error"; }

class Line {
public:
    void add(std::string_view text) noexcept
    {
        // One byte stays free for the line's end.
        const std::size_t size = std::min(text.size(), sizeof _bytes - 1 - _size);
        std::memcpy(_bytes + _size, text.data(), size);
        _size += size;
    }

    void addTime() noexcept
    {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        tm parts{};
        gmtime_r(&now.tv_sec, &parts);
        char day[32];
        char text[64];
        std::strftime(day, sizeof day, "%Y-%m-%dT%H:%M:%S", &parts);
        std::snprintf(text, sizeof text, "%s.%03ldZ ", day, now.tv_nsec / 1000000);
        add(text);
    }

    void writeTo(int descriptor) noexcept
    {
        _bytes[_size++] = '\n';
        while (write(descriptor, _bytes, _size) < 0 && errno == EINTR) {
        }
    }

    const char* text() noexcept
    {
        _bytes[_size] = '\0';
        return _bytes;
    }

private:
    char _bytes[maximumLine];
    std::size_t _size = 0;
};

void callFunction(LogLevel level, std::string_view source, std::string_view text) noexcept
{
    if (insideFunction) return;
    std::lock_guard<std::mutex> lock(sinks().calls);
    if (!sinks().function) return;
    insideFunction = true;
    try {
        sinks().function(level, source, text);
    } catch (...) { // a log line never fails its caller
    }
    insideFunction = false;
}

// Points the log file's descriptor at another file. dup2 is atomic for those who write at this moment.
bool openFile(const std::string& path)
{
    const int fresh = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0640);
    if (fresh < 0) return false;
    const int kept = sinks().file.load();
    if (kept < 0) {
        sinks().file.store(fresh);
        return true;
    }
    const bool done = dup3(fresh, kept, O_CLOEXEC) >= 0;
    close(fresh);
    return done;
}

} // namespace

void writeLine(LogLevel level, std::string_view source, std::string_view text) noexcept
{
    const int before = errno;
    const Route route = sinks().route.load(std::memory_order_acquire);
    if (route == Route::function) {
        callFunction(level, source, text);
    } else {
        Line line;
        if (route == Route::file) line.addTime();
        if (route != Route::syslog) {
            line.add(nameOf(level));
            line.add(" ");
        }
        line.add(source);
        line.add(": ");
        line.add(text);
        if (route == Route::syslog) // without openlog: the identity stays that of the program that we are loaded into
            syslog((level == LogLevel::info ? LOG_INFO : LOG_ERR) | LOG_DAEMON, "%s", line.text());
        else
            line.writeTo(route == Route::file ? sinks().file.load() : STDERR_FILENO);
    }
    errno = before;
}

bool applyLogSettings(const LogSettings& settings)
{
    Sinks& all = sinks();
    std::lock_guard<std::mutex> lock(all.settings);
    bool opened = true;
    Route route = settings.target == LogTarget::standardError ? Route::standardError : Route::syslog;
    if (settings.target == LogTarget::file) {
        opened = openFile(settings.file);
        route = opened ? Route::file : Route::syslog;
    }
    all.configured.store(route);
    if (all.route.load() != Route::function) all.route.store(route);
    setLogLevel(settings.level);
    return opened;
}

void setLogLevel(LogLevel level) noexcept { levelInForce.store(level, std::memory_order_relaxed); }

LogLevel logLevel() noexcept { return levelInForce.load(std::memory_order_relaxed); }

void setLogSink(LogSink sink)
{
    configureOnce(); // else the first Logger made later would configure over it
    Sinks& all = sinks();
    std::lock_guard<std::mutex> lock(all.settings);
    const bool taken = static_cast<bool>(sink);
    {
        std::lock_guard<std::mutex> calls(all.calls);
        std::swap(all.function, sink);
    }
    all.route.store(taken ? Route::function : all.configured.load());
}
