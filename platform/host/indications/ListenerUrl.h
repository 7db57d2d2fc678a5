// Where a listener destination sends to. Only http and https, with a host; credentials in the address are refused,
// since clients read destinations back. Pure.
#pragma once

#include <string>
#include <string_view>

namespace KDV::Host {

struct ListenerUrl {
    static constexpr std::size_t maxLength = 2048;

    bool secure = false;
    std::string host;  // IPv6 addresses without brackets
    unsigned port = 0; // 0: the default of the protocol
    std::string path;  // from the first slash; "/" if there is none

    // False and a reason if the text is no such address.
    static bool parse(std::string_view text, ListenerUrl& url, std::string& reason);
    // As it is sent to: with a path.
    std::string text() const;
};

} // namespace KDV::Host
