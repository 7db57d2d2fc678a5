// Where the log lines of the process go and from which level. Read once, when the first Logger is made: logger.conf in
// the configuration directory (KDV_CONFIG_DIR or /etc/cim/zt-kdv/) first, then the environment (KDV_LOG,
// KDV_LOG_LEVEL), which wins. A mistake in either is reported once on the default sink and the rest still counts.
// The functions that change the process's settings may be called from any thread; tests and programs use them, the
// provider does not. Parsing is pure.
#pragma once

#include "logger/Export.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

enum class LogLevel { off, error, info };

enum class LogTarget { syslog, standardError, file };

struct LogSettings {
    LogTarget target = LogTarget::syslog;
    std::string file; // only with LogTarget::file
    LogLevel level = LogLevel::error;
};

// "off", "error" or "info"; false and nothing changed for anything else.
KDV_LOGGER_API bool parseLogLevel(std::string_view text, LogLevel& level);

// "syslog", "stderr" or "file:/absolute/path" into target and file; false and nothing changed for anything else.
KDV_LOGGER_API bool parseLogTarget(std::string_view text, LogSettings& settings);

// Lines "sink = ..." and "level = ..."; '#' starts a comment line. Each mistake adds one text with its line number.
KDV_LOGGER_API void parseLogConfiguration(std::string_view text, LogSettings& settings,
                                          std::vector<std::string>& mistakes);

// File and environment of this process together.
KDV_LOGGER_API LogSettings readLogSettings(std::vector<std::string>& mistakes);

// False when the file cannot be opened; lines then go to syslog, and errno tells why.
KDV_LOGGER_API bool applyLogSettings(const LogSettings& settings);

KDV_LOGGER_API void setLogLevel(LogLevel level) noexcept;
KDV_LOGGER_API LogLevel logLevel() noexcept;

// Lines go to this function instead of the configured sink, one call at a time, until an empty one is set; when
// setLogSink returns, the one before it is no longer running. The texts are printable and end with the call. It may
// log, but those lines are dropped.
using LogSink = std::function<void(LogLevel level, std::string_view source, std::string_view text)>;
KDV_LOGGER_API void setLogSink(LogSink sink);
