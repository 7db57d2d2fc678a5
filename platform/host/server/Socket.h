// A TCP socket of the host's own, non-blocking and closed with its owner. Waits end at a deadline, so that no peer can
// hold a thread. One thread at a time, except cut(), which any thread may call while the owner lives. What the
// kernel refuses is std::system_error; a peer that went away or is too slow is a result, not an error.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <sys/uio.h>

namespace KDV::Host {

using Clock = std::chrono::steady_clock;

enum class IoResult { Done, Closed, Late };

class Socket {
public:
    Socket() = default;
    explicit Socket(int descriptor) noexcept : _descriptor(descriptor) {}
    Socket(Socket&& other) noexcept;
    Socket& operator=(Socket&& other) noexcept;
    ~Socket();

    int descriptor() const noexcept { return _descriptor; }

    // Waits until there is something to read, then reads what is there. Done with count 0 does not happen.
    IoResult receive(char* to, std::size_t size, Clock::time_point deadline, std::size_t& count) noexcept;
    // Sends all pieces, advancing them as they go; Late with the rest still in them.
    IoResult send(iovec*& pieces, int& count, Clock::time_point deadline) noexcept;
    // Says that no more will be sent and reads off what the peer still sends, so that it sees the last reply.
    void linger(Clock::time_point deadline) noexcept;
    // Ends every wait of the owning thread: for reading only, or for both ways.
    void cut(bool both) const noexcept;

private:
    IoResult wait(short events, Clock::time_point deadline) const noexcept;

    int _descriptor = -1;
};

struct Endpoint {
    std::string address; // "127.0.0.1", "::1" without brackets; empty: every address
    std::string port;

    // "127.0.0.1:5988", "[::1]:0", ":5988"; std::invalid_argument otherwise.
    static Endpoint parse(const std::string& text);
};

// A socket that listens there; `bound` becomes "address:port" as it really is.
Socket listenAt(const Endpoint& endpoint, Endpoint& bound);

} // namespace KDV::Host
