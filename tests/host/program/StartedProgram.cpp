#include "hostprogram/StartedProgram.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace KDV::Host::Test {

namespace {

constexpr int patienceMilliseconds = 120'000;

[[noreturn]] void become(const std::vector<std::string>& command, const StartedProgram::Environment& environment,
                         int output, int error)
{
    ::dup2(output, STDOUT_FILENO);
    ::dup2(error, STDERR_FILENO);
    for (const auto& [name, value] : environment)
        ::setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> arguments;
    for (const std::string& each : command)
        arguments.push_back(const_cast<char*>(each.c_str()));
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

} // namespace

StartedProgram::StartedProgram(const std::vector<std::string>& command, const Environment& environment)
{
    std::array<int, 2> output, error;
    if (::pipe2(output.data(), O_CLOEXEC) != 0 || ::pipe2(error.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for a program's outputs");
    _process = ::fork();
    if (_process == 0) become(command, environment, output[1], error[1]);
    ::close(output[1]);
    ::close(error[1]);
    _ends = {output[0], error[0]};
    if (_process < 0) throw std::runtime_error("cannot start " + command.front());
}

StartedProgram::~StartedProgram()
{
    if (_process > 0) {
        ::kill(_process, SIGKILL);
        while (::waitpid(_process, nullptr, 0) < 0 && errno == EINTR)
            continue;
    }
    for (int end : _ends)
        if (end >= 0) ::close(end);
}

bool StartedProgram::waitForOutput(const std::string& text) { return waitFor(0, text); }

bool StartedProgram::waitForError(const std::string& text) { return waitFor(1, text); }

int StartedProgram::waitForEnd()
{
    while (readMore())
        continue;
    if (_ends[0] >= 0 || _ends[1] >= 0) return -1;
    int status = 0;
    while (::waitpid(_process, &status, 0) < 0 && errno == EINTR)
        continue;
    _process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void StartedProgram::signal(int number)
{
    if (_process > 0) ::kill(_process, number);
}

bool StartedProgram::waitFor(std::size_t which, const std::string& text)
{
    while (_texts[which].find(text) == std::string::npos)
        if (!readMore()) return false;
    return true;
}

bool StartedProgram::readMore()
{
    std::array<pollfd, 2> polled{pollfd{_ends[0], POLLIN, 0}, pollfd{_ends[1], POLLIN, 0}}; // -1 is passed over
    if (_ends[0] < 0 && _ends[1] < 0) return false;
    const int ready = ::poll(polled.data(), polled.size(), patienceMilliseconds);
    if (ready < 0) return errno == EINTR;
    if (ready == 0) return false;
    for (std::size_t i = 0; i < polled.size(); ++i) {
        if (!polled[i].revents) continue;
        std::array<char, 4096> block;
        const ssize_t got = ::read(_ends[i], block.data(), block.size());
        if (got > 0) {
            _texts[i].append(block.data(), static_cast<std::size_t>(got));
        } else {
            ::close(_ends[i]);
            _ends[i] = -1;
        }
    }
    return true;
}

} // namespace KDV::Host::Test
