// Writes entries with fields of their own to the journal, by its native protocol: one datagram an entry. Where there is
// no journal, or it takes nothing at the moment, an entry is lost without a word: whoever writes must never wait.
// Any thread may call send().
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace KDV::Host {

// Names are capital letters, digits and underscores; values any bytes.
using JournalFields = std::vector<std::pair<std::string, std::string>>;

class JournalSocket {
public:
    static constexpr const char* systemPath = "/run/systemd/journal/socket";
    static constexpr std::size_t maxValue = 8u << 10; // the rest of a longer one is left out

    explicit JournalSocket(std::string path = systemPath);
    ~JournalSocket();
    JournalSocket(const JournalSocket&) = delete;
    JournalSocket& operator=(const JournalSocket&) = delete;

    bool send(const JournalFields& fields) const noexcept; // whether the journal took it

    static std::string datagram(const JournalFields& fields);

private:
    std::string _path;
    int _socket;
};

} // namespace KDV::Host
