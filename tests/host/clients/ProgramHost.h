// The program kdv-cimhost as it is built, started as a user starts it, with the default scenario and the real provider.
// Killed with its owner; failures are std::runtime_error.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace KDV::Host::Test {

class ProgramHost {
public:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    explicit ProgramHost(const std::vector<std::string>& arguments = {}, const Environment& environment = {});
    ~ProgramHost();
    ProgramHost(const ProgramHost&) = delete;
    ProgramHost& operator=(const ProgramHost&) = delete;

    std::uint16_t port() const noexcept { return _port; }
    const std::string& greeting() const noexcept { return _greeting; } // what it said until it was ready
    int terminate(); // SIGTERM; the exit status, -1 if a signal ended it

private:
    pid_t _process = -1;
    int _output = -1;
    std::uint16_t _port = 0;
    std::string _greeting;
    std::string _state; // a folder of its own for what it keeps
};

// Runs a program to its end; what it wrote to both of its outputs.
struct Finished {
    int status = -1;
    std::string output;
};
Finished run(const std::vector<std::string>& command);

} // namespace KDV::Host::Test
