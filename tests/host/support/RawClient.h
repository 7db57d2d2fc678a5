// A client that sends whatever bytes a test wants and reads replies by the rules of HTTP, with a length or in chunks.
// Waits are bounded by a long deadline that only a hanging server reaches. One thread; failures are std::runtime_error.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace KDV::Host::Test {

struct RawReply {
    unsigned status = 0;
    std::map<std::string, std::string> fields;   // names in lower case; the last of equal ones
    std::map<std::string, std::string> trailers; // of a chunked body
    bool chunked = false;
    bool truncated = false; // the connection ended inside the body
    std::string body;
    std::string head; // as received

    std::string field(const std::string& name) const;
};

class RawClient {
public:
    explicit RawClient(std::uint16_t port);
    ~RawClient();
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    void send(const std::string& bytes);
    void endSending(); // the server sees the end of what is sent
    RawReply read();
    // True when the server ends the connection without sending anything more.
    bool closedByServer();
    // Reads a little of what has come and leaves the rest where it is.
    std::string readSome(std::size_t atMost);

private:
    bool fill();
    std::string line();
    void readChunks(RawReply& reply);

    int _socket = -1;
    std::string _input;
};

} // namespace KDV::Host::Test
