// One connection to a CIM server over HTTP or HTTPS, kept between requests. Used by one thread.
#pragma once

#include "cim/ReplyReader.h"
#include "cim/Request.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace Cim {

// The server was not reached, or did not speak CIM-XML.
class Unreachable : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The server answered with a CIM status.
class Refused : public std::runtime_error {
public:
    Refused(int code, const std::string& text) : std::runtime_error(text), _code(code) {}
    int code() const noexcept { return _code; }

private:
    int _code;
};

struct ServerAddress {
    std::string url = "http://127.0.0.1:5988"; // without the path; "/cimom" is added
    std::string user;
    std::string password;
    std::string caFile;       // for https: a file of certificates to trust instead of the system's
    bool insecure = false;    // for https: take any certificate
    long connectTimeout = 10; // seconds
    long timeout = 60;        // seconds without progress
};

class Connection {
public:
    explicit Connection(ServerAddress server);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    Reply send(const Request& request); // throws Unreachable or Refused
    const ServerAddress& server() const noexcept { return _server; }

private:
    struct Handle;
    ServerAddress _server;
    std::unique_ptr<Handle> _handle;
};

} // namespace Cim
