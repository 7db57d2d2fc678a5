#include "ProgramHost.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace KDV::Host::Test {

namespace {

const std::string program = KDV_BUILD_DIR "/bin/kdv-cimhost";
const std::string scenario = KDV_SOURCE_DIR "/scenarios/default.json";

// Starts a program; `output` becomes the reading end of a pipe from its outputs.
pid_t start(const std::vector<std::string>& command, int& output, const ProgramHost::Environment& environment = {})
{
    std::array<int, 2> ends;
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    std::vector<char*> arguments;
    for (const std::string& each : command)
        arguments.push_back(const_cast<char*>(each.c_str()));
    arguments.push_back(nullptr);
    const pid_t process = ::fork();
    if (process == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::dup2(ends[1], STDERR_FILENO);
        ::setenv("KDV_SAS_SCENARIO", scenario.c_str(), 1);
        ::setenv("KDV_LOG", "stderr", 1);
        for (const auto& [name, value] : environment)
            ::setenv(name.c_str(), value.c_str(), 1);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    output = ends[0];
    if (process < 0) throw std::runtime_error("fork");
    return process;
}

int statusOf(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR)
        continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Appends what is there; false at the end.
bool readMore(int from, std::string& text)
{
    std::array<char, 4096> block;
    const ssize_t got = ::read(from, block.data(), block.size());
    if (got > 0) text.append(block.data(), static_cast<std::size_t>(got));
    return got > 0;
}

} // namespace

ProgramHost::ProgramHost(const std::vector<std::string>& arguments, const Environment& environment)
{
    std::string folder = (std::filesystem::temp_directory_path() / "kdv-host-state-XXXXXX").string();
    if (!::mkdtemp(folder.data())) throw std::runtime_error("cannot make a temporary folder");
    _state = folder;
    std::vector<std::string> command{program, "--listen", "127.0.0.1:0", "--state-dir", _state};
    command.insert(command.end(), arguments.begin(), arguments.end());
    _process = start(command, _output, environment);
    while (_greeting.find("ends on SIGTERM") == _greeting.npos)
        if (!readMore(_output, _greeting)) throw std::runtime_error("kdv-cimhost did not start: " + _greeting);
    const std::string before = "http://127.0.0.1:";
    _port = static_cast<std::uint16_t>(std::stoul(_greeting.substr(_greeting.find(before) + before.size())));
}

ProgramHost::~ProgramHost()
{
    if (_process > 0) {
        ::kill(_process, SIGKILL);
        statusOf(_process);
    }
    ::close(_output);
    std::error_code ignored;
    std::filesystem::remove_all(_state, ignored);
}

int ProgramHost::terminate()
{
    ::kill(_process, SIGTERM);
    while (readMore(_output, _greeting))
        continue;
    const int status = statusOf(_process);
    _process = -1;
    return status;
}

Finished run(const std::vector<std::string>& command)
{
    Finished finished;
    int output = -1;
    const pid_t process = start(command, output);
    while (readMore(output, finished.output))
        continue;
    ::close(output);
    finished.status = statusOf(process);
    return finished;
}

} // namespace KDV::Host::Test
