// The way to one listener. send() is called by one thread at a time, the destination's own; cancel() by any.
#pragma once

#include "indications/ExportMessage.h"

#include <chrono>
#include <memory>
#include <string>

namespace KDV::Host {

struct ConnectionOptions {
    std::chrono::milliseconds connectTimeout{5'000};
    std::chrono::milliseconds answerTimeout{15'000}; // of a whole exchange, connecting included
    bool verifyPeer = true;                          // of https
    std::string caFile;                              // empty: the system's
};

class ListenerConnection {
public:
    virtual ~ListenerConnection();
    // One attempt; returns within the timeouts, and never throws for what the network or the listener does.
    virtual ExportAnswer send(const std::string& message, const std::string& messageId) = 0;
    // Ends the attempt that is being made and every later one.
    virtual void cancel() noexcept = 0;
};

// Over HTTP with libcurl, keeping the connection open between messages.
std::unique_ptr<ListenerConnection> connectTo(const std::string& url, const ConnectionOptions& options);

} // namespace KDV::Host
