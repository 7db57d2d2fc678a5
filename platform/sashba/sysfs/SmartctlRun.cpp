#include "sashba/sysfs/SmartctlRun.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace KDV {
namespace {

constexpr std::size_t mostBytes = std::size_t{1} << 20;
constexpr const char* places[] = {"/usr/sbin/smartctl", "/sbin/smartctl", "/usr/local/sbin/smartctl"};

struct Pipe {
    int ends[2] = {-1, -1};
    Pipe()
    {
        if (pipe2(ends, O_CLOEXEC) != 0) ends[0] = ends[1] = -1;
    }
    ~Pipe()
    {
        for (const int end : ends) {
            if (end >= 0) close(end);
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeWriter()
    {
        close(ends[1]);
        ends[1] = -1;
    }
};

// What the program does not inherit: the server's descriptors, signals, environment.
bool spawn(const std::string& program, const std::vector<std::string>& arguments, int output, pid_t& child)
{
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    if (posix_spawn_file_actions_init(&files) != 0) return false;
    if (posix_spawnattr_init(&attributes) != 0) {
        posix_spawn_file_actions_destroy(&files);
        return false;
    }
    posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, output, 1);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 34)
    posix_spawn_file_actions_addclosefrom_np(&files, 3);
#endif
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    char language[] = "LC_ALL=C";
    char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    char* const environment[] = {language, path, nullptr};
    const int failure = posix_spawn(&child, program.c_str(), &files, &attributes, argv.data(), environment);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return failure == 0;
}

// True when the output ended in time.
bool readAll(int fd, std::chrono::milliseconds deadline, std::string& output)
{
    const auto end = std::chrono::steady_clock::now() + deadline;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd waiting{fd, POLLIN, 0};
        const int ready = left > 0 ? poll(&waiting, 1, static_cast<int>(std::min<long long>(left, 60000))) : 0;
        if (ready < 0 && errno == EINTR) continue;
        if (ready < 0 || (ready == 0 && left <= 60000)) return false;
        if (ready == 0) continue;
        char buffer[4096];
        const ssize_t got = read(fd, buffer, sizeof buffer);
        if (got == 0) return true;
        if ((got < 0 && errno != EINTR) || output.size() > mostBytes) return false;
        if (got > 0) output.append(buffer, static_cast<std::size_t>(got));
    }
}

} // namespace

std::string outputOf(const std::string& program, const std::vector<std::string>& arguments,
                     std::chrono::milliseconds deadline)
{
    Pipe pipe;
    pid_t child = -1;
    if (pipe.ends[0] < 0 || !spawn(program, arguments, pipe.ends[1], child)) return {};
    pipe.closeWriter();
    std::string output;
    const bool whole = readAll(pipe.ends[0], deadline, output);
    if (!whole) kill(child, SIGKILL);
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) { // gone already where the server ignores its children
    }
    return whole ? output : std::string();
}

std::string runSmartctl(const std::string& node, std::chrono::milliseconds deadline)
{
    const auto* const program =
        std::find_if(std::begin(places), std::end(places), [](const char* place) { return access(place, X_OK) == 0; });
    if (program == std::end(places)) return {};
    return outputOf(*program, {"--json", "--nocheck=standby", "-i", "-H", "-A", "-l", "devstat", node}, deadline);
}

} // namespace KDV
