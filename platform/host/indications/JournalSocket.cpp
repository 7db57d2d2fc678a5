#include "indications/JournalSocket.h"

#include <cstdint>
#include <cstring>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace KDV::Host {

JournalSocket::JournalSocket(std::string path)
    : _path(std::move(path)), _socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
}

JournalSocket::~JournalSocket()
{
    if (_socket >= 0) ::close(_socket);
}

// "NAME=value\n", or for values with line feeds: the name, a line feed, the length in 64 little-endian bits, the value.
std::string JournalSocket::datagram(const JournalFields& fields)
{
    std::string bytes;
    for (const auto& [name, whole] : fields) {
        const std::string_view value = std::string_view(whole).substr(0, maxValue);
        bytes += name;
        if (value.find('\n') == std::string_view::npos) {
            bytes += '=';
        } else {
            bytes += '\n';
            for (unsigned shift = 0; shift < 64; shift += 8)
                bytes += static_cast<char>((static_cast<std::uint64_t>(value.size()) >> shift) & 0xff);
        }
        bytes += value;
        bytes += '\n';
    }
    return bytes;
}

bool JournalSocket::send(const JournalFields& fields) const noexcept
try {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (_socket < 0 || _path.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, _path.c_str(), _path.size());
    const std::string bytes = datagram(fields);
    return ::sendto(_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                    reinterpret_cast<const sockaddr*>(&address), sizeof address) >= 0;
} catch (...) {
    return false; // out of memory: the entry is lost, the alert goes on
}

} // namespace KDV::Host
