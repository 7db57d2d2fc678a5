// Inside of libKDVLogger: hands one finished line to the sink in force. Any thread; no allocation on the way to syslog,
// standard error or a file; errno is kept.
#pragma once

#include "logger/LogSettings.h"

#include <atomic>
#include <cstddef>
#include <string_view>

// The level in force. Loggers read it with one relaxed load; a change reaches other threads soon, which is enough.
extern std::atomic<LogLevel> levelInForce;

// Longest text of a line, source not counted; longer ones end with "...".
constexpr std::size_t maximumText = 1800;
// Longest line with time, level and source.
constexpr std::size_t maximumLine = 2048;

void writeLine(LogLevel level, std::string_view source, std::string_view text) noexcept;

// Copies text so that it is valid UTF-8 without control characters: those and stray bytes become \n, \t or \xNN. Cuts
// at room bytes, at the end of a character, with "..." as the last three. Gives the length written.
KDV_LOGGER_API std::size_t makePrintable(std::string_view text, char* out, std::size_t room) noexcept;

// Reads and applies the settings of the process, the first time it is called.
void configureOnce();
