// What an object writes its log lines with: a source ("KDVSASHBA:4711:KDV_SASDiskDrive") and two levels. A Logger is a
// pointer to a shared source, so a copy costs nothing and equal appended sources are kept once for the process. A call
// at a level that is off costs one load and formats nothing. Every member may be called from any thread; a line is
// written with one system call and never split. Formats are those of printf and the compiler checks them.
// Where lines go (journal by default, standard error, a file) and from which level (error by default) is configuration
// of the process: see LogSettings.h.
#pragma once

#include "logger/Export.h"

#include <string>
#include <string_view>

class LogSource;

class KDV_LOGGER_API Logger {
public:
    explicit Logger(std::string_view source);

    // Extends the source of this logger only; copies made before keep theirs.
    void appendLogSource(std::string_view text);

    void info(const char* format, ...) const __attribute__((format(printf, 2, 3)));
    void error(const char* format, ...) const __attribute__((format(printf, 2, 3)));

    const std::string& source() const noexcept;

private:
    const LogSource* _source; // kept for the life of the process
};
