// One HTTP request as read from a connection, and what is wrong with one. Plain values.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KDV::Host {

struct HttpRequest {
    std::string method; // in its own case: methods are case-sensitive
    std::string target;
    unsigned version = 11; // 10 or 11
    bool keepAlive = true;
    std::vector<std::pair<std::string, std::string>> fields;
    std::string body;

    // The first field of the name (without regard to case), or null.
    const std::string* find(std::string_view name) const;
    unsigned count(std::string_view name) const;
};

// Answered with the status and an empty body, and the connection is closed: where the next request begins is not known.
class HttpError : public std::runtime_error {
public:
    HttpError(unsigned status, const std::string& what) : std::runtime_error(what), _status(status) {}
    unsigned status() const noexcept { return _status; }

private:
    unsigned _status;
};

} // namespace KDV::Host
