#include "indications/LocalStream.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace KDV::Host {

namespace {

[[noreturn]] void fail(const std::string& what)
{
    const int code = errno;
    throw std::system_error(code, std::generic_category(), what);
}

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        fail("the name of the local stream's socket: " + path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    return address;
}

// True if a process still answers there; a socket left by one that ended refuses.
bool isServed(const sockaddr_un& address)
{
    const int probe = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (probe < 0) fail("socket");
    const int result = ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const bool served = result == 0 || (errno != ECONNREFUSED && errno != ENOENT);
    ::close(probe);
    return served;
}

} // namespace

LocalStream::Follower::~Follower() { ::close(socket); }

LocalStream::LocalStream(StreamOptions options, Watch watch, Logger log)
    : _options(std::move(options)), _watch(std::move(watch)), _log(log)
{
    _wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (_wake < 0) fail("eventfd");
    try {
        listen();
        _thread = std::thread([this] { run(); });
    } catch (...) {
        ::close(_wake);
        if (_listener >= 0) ::close(_listener);
        throw;
    }
}

LocalStream::~LocalStream()
{
    _stopping.store(true);
    wake();
    _thread.join();
    ::close(_listener);
    ::close(_wake);
    ::unlink(_options.path.c_str());
}

void LocalStream::listen()
{
    const sockaddr_un address = addressOf(_options.path);
    struct stat found {};
    if (::lstat(_options.path.c_str(), &found) == 0) {
        if (!S_ISSOCK(found.st_mode) || isServed(address)) {
            errno = EADDRINUSE;
            fail(_options.path);
        }
        ::unlink(_options.path.c_str());
    }
    _listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (_listener < 0) fail("socket");
    // The mode of the descriptor is that of the socket's file, less the umask: at no moment is it wider than wanted.
    if (::fchmod(_listener, _options.mode) != 0 ||
        ::bind(_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::chmod(_options.path.c_str(), _options.mode) != 0 || ::listen(_listener, 16) != 0)
        fail(_options.path);
}

void LocalStream::wake() const noexcept
{
    const std::uint64_t one = 1;
    // Only an overflow of the counter could fail, and then the descriptor is readable already.
    [[maybe_unused]] const ssize_t written = ::write(_wake, &one, sizeof one);
}

void LocalStream::publish(std::string_view line)
{
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        for (Follower& follower : _followers) {
            if (follower.gone) continue;
            if (follower.pending.size() + line.size() + 1 > _options.bufferedBytes) {
                follower.gone = true;
                _dropped.fetch_add(1);
                continue;
            }
            follower.pending.append(line).append(1, '\n');
        }
    }
    wake();
}

unsigned LocalStream::followers() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return static_cast<unsigned>(_followers.size());
}

void LocalStream::run()
{
    bool followed = false;
    while (!_stopping.load()) {
        std::vector<pollfd> waits{{_listener, POLLIN, 0}, {_wake, POLLIN, 0}};
        std::vector<Follower*> order;
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            for (Follower& follower : _followers) {
                order.push_back(&follower);
                waits.push_back(
                    {follower.socket, static_cast<short>(follower.pending.empty() ? POLLIN : POLLIN | POLLOUT), 0});
            }
        }
        if (::poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) break;
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t taken = ::read(_wake, &count, sizeof count);
        for (std::size_t i = 0; i < order.size(); ++i)
            serve(*order[i], waits[i + 2].revents);
        if ((waits[0].revents & POLLIN) != 0) accept();
        const bool any = removeGone();
        if (any != std::exchange(followed, any) && _watch) _watch(any);
    }
    const std::lock_guard<std::mutex> lock(_mutex);
    for (Follower& follower : _followers)
        flush(follower);
    _followers.clear();
}

void LocalStream::accept()
{
    const int number = ::accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (number < 0) return;
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_followers.size() >= _options.followers)
        ::close(number);
    else
        _followers.emplace_back(number);
}

void LocalStream::serve(Follower& follower, short events)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    if ((events & (POLLIN | POLLHUP | POLLERR)) != 0) {
        char ignored[512];
        const ssize_t count = ::recv(follower.socket, ignored, sizeof ignored, MSG_DONTWAIT);
        if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) follower.gone = true;
    }
    if (!follower.gone) flush(follower);
}

void LocalStream::flush(Follower& follower)
{
    while (!follower.pending.empty()) {
        const ssize_t sent =
            ::send(follower.socket, follower.pending.data(), follower.pending.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0) {
            follower.gone = follower.gone || (errno != EAGAIN && errno != EINTR);
            return;
        }
        follower.pending.erase(0, static_cast<std::size_t>(sent));
    }
}

bool LocalStream::removeGone()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _followers.remove_if([](const Follower& follower) { return follower.gone; });
    return !_followers.empty();
}

} // namespace KDV::Host
