#include "hostserver/Socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace KDV::Host {

namespace {

bool wouldBlock() noexcept { return errno == EAGAIN || errno == EWOULDBLOCK; }

[[noreturn]] void throwErrno(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

} // namespace

Socket::Socket(Socket&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}

Socket& Socket::operator=(Socket&& other) noexcept
{
    std::swap(_descriptor, other._descriptor);
    return *this;
}

Socket::~Socket()
{
    if (_descriptor >= 0) ::close(_descriptor);
}

IoResult Socket::wait(short events, Clock::time_point deadline) const noexcept
{
    // A client that asks again at once is answered without a sleep in between: on a quiet machine waking up takes
    // longer than a request does. A connection that stays silent is looked at for this short time once.
    constexpr auto patience = std::chrono::microseconds(60);
    const Clock::time_point sleepAt = std::min(Clock::now() + patience, deadline);
    pollfd item{_descriptor, events, 0};
    while (Clock::now() < sleepAt)
        if (::poll(&item, 1, 0) > 0) return IoResult::Done;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        const int ready = ::poll(&item, 1, static_cast<int>(std::clamp<long long>(left, 0, 3'600'000)));
        if (ready > 0) return IoResult::Done;
        if (ready == 0 && Clock::now() >= deadline) return IoResult::Late;
        if (ready < 0 && errno != EINTR) return IoResult::Closed;
    }
}

IoResult Socket::receive(char* to, std::size_t size, Clock::time_point deadline, std::size_t& count) noexcept
{
    for (;;) {
        const ssize_t got = ::recv(_descriptor, to, size, 0);
        if (got > 0) {
            count = static_cast<std::size_t>(got);
            return IoResult::Done;
        }
        if (got == 0 || (!wouldBlock() && errno != EINTR)) return IoResult::Closed;
        if (const IoResult result = wait(POLLIN, deadline); result != IoResult::Done) return result;
    }
}

IoResult Socket::send(iovec*& pieces, int& count, Clock::time_point deadline) noexcept
{
    while (count > 0) {
        msghdr message{};
        message.msg_iov = pieces;
        message.msg_iovlen = static_cast<std::size_t>(count);
        const ssize_t sent = ::sendmsg(_descriptor, &message, MSG_NOSIGNAL);
        if (sent < 0) {
            if (errno == EINTR) continue;
            if (!wouldBlock()) return IoResult::Closed;
            if (const IoResult result = wait(POLLOUT, deadline); result != IoResult::Done) return result;
            continue;
        }
        for (auto left = static_cast<std::size_t>(sent); count > 0;) {
            if (left < pieces->iov_len) {
                pieces->iov_base = static_cast<char*>(pieces->iov_base) + left;
                pieces->iov_len -= left;
                break;
            }
            left -= pieces->iov_len;
            ++pieces;
            --count;
        }
    }
    return IoResult::Done;
}

void Socket::linger(Clock::time_point deadline) noexcept
{
    ::shutdown(_descriptor, SHUT_WR);
    std::array<char, 4096> scrap;
    std::size_t count = 0;
    constexpr std::size_t enough = 1u << 20;
    for (std::size_t total = 0; total < enough; total += count)
        if (receive(scrap.data(), scrap.size(), deadline, count) != IoResult::Done) return;
}

void Socket::cut(bool both) const noexcept { ::shutdown(_descriptor, both ? SHUT_RDWR : SHUT_RD); }

Endpoint Endpoint::parse(const std::string& text)
{
    Endpoint endpoint;
    const std::size_t colon = text.rfind(':');
    if (colon == text.npos) throw std::invalid_argument("\"" + text + "\" is not ADDRESS:PORT");
    endpoint.address = text.substr(0, colon);
    endpoint.port = text.substr(colon + 1);
    const bool bracketed =
        endpoint.address.size() > 2 && endpoint.address.front() == '[' && endpoint.address.back() == ']';
    if (bracketed) endpoint.address = endpoint.address.substr(1, endpoint.address.size() - 2);
    const bool digits =
        !endpoint.port.empty() && endpoint.port.size() <= 5 &&
        std::all_of(endpoint.port.begin(), endpoint.port.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!digits || std::stoi(endpoint.port) > 65535 || (!bracketed && endpoint.address.find(':') != text.npos))
        throw std::invalid_argument("\"" + text + "\" is not ADDRESS:PORT (an IPv6 address stands in brackets)");
    return endpoint;
}

Socket listenAt(const Endpoint& endpoint, Endpoint& bound)
{
    const std::string shown = endpoint.address + ":" + endpoint.port;
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const char* address = endpoint.address.empty() ? nullptr : endpoint.address.c_str();
    if (const int failed = ::getaddrinfo(address, endpoint.port.c_str(), &hints, &found))
        throw std::runtime_error("cannot listen at " + shown + ": " + ::gai_strerror(failed));
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);

    Socket socket(::socket(found->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (socket.descriptor() < 0) throwErrno("cannot listen at " + shown);
    const int on = 1;
    ::setsockopt(socket.descriptor(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(socket.descriptor(), found->ai_addr, found->ai_addrlen) != 0 || ::listen(socket.descriptor(), 128) != 0)
        throwErrno("cannot listen at " + shown);

    sockaddr_storage where{};
    socklen_t length = sizeof where;
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    if (::getsockname(socket.descriptor(), reinterpret_cast<sockaddr*>(&where), &length) != 0 ||
        ::getnameinfo(reinterpret_cast<sockaddr*>(&where), length, host.data(), host.size(), port.data(), port.size(),
                      NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        throwErrno("cannot read the address of " + shown);
    bound = {host.data(), port.data()};
    return socket;
}

} // namespace KDV::Host
