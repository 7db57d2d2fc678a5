// A program that a test starts, with what it writes to either output. Every wait ends when its condition holds, when
// the program can no longer bring it about, or after a long deadline that only a hanging program reaches. Killed with
// its owner. One thread; failures to start are std::runtime_error.
#pragma once

#include <array>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace KDV::Host::Test {

class StartedProgram {
public:
    using Environment = std::vector<std::pair<std::string, std::string>>; // on top of the test's own

    explicit StartedProgram(const std::vector<std::string>& command, const Environment& environment = {});
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    bool waitForOutput(const std::string& text);
    bool waitForError(const std::string& text);
    int waitForEnd(); // the exit status; 128 and more for a signal; -1 past the deadline
    void signal(int number);

    const std::string& output() const noexcept { return _texts[0]; }
    const std::string& error() const noexcept { return _texts[1]; }

private:
    bool waitFor(std::size_t which, const std::string& text);
    bool readMore(); // false when both outputs have ended or the deadline is over

    pid_t _process = -1;
    std::array<int, 2> _ends{-1, -1};
    std::array<std::string, 2> _texts;
};

} // namespace KDV::Host::Test
