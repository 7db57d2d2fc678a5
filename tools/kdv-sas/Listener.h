// Receives alerts: a small HTTP server for CIM-XML export requests (DSP0200). Runs on the thread that calls run, calls
// back on it, and bounds what a peer may send. Takes POST with a length only.
#pragma once

#include "cim/ReplyReader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace KdvSas {

class Listener {
public:
    // Called for each indication; false makes the server send it again later.
    using OnIndication = std::function<bool(const Cim::Instance&)>;

    // Port 0 takes a free one. Throws when the address cannot be had.
    Listener(const std::string& address, std::uint16_t port, OnIndication onIndication);
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener();

    std::string url() const; // "http://address:port"
    void run();              // until stop, SIGINT or SIGTERM
    void stop();             // any thread

private:
    struct Server;
    std::unique_ptr<Server> _server;
};

} // namespace KdvSas
