// The body of one reply on its way to the client. It is written into buffer() and goes out in chunks; a body that fits
// one chunk goes out whole with its length, headers and all in one call. Nothing is sent before the first chunk is
// full, so that an error found until then can still replace the body. One thread, that of the connection.
//
// While a provider runs it holds its own lock, and a client that reads slowly must not hold it too: between
// providerBegins() and providerEnds() a stalled client makes the rest go into a SpillStore, to be sent afterwards.
#pragma once

#include "hostserver/Socket.h"
#include "hostserver/SpillStore.h"
#include "hostxml/ReplyBuffer.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace KDV::Host {

struct StreamLimits {
    std::size_t chunk = 64u << 10;
    std::chrono::milliseconds stall{250};       // that a provider waits for a client
    std::chrono::milliseconds patience{30'000}; // that anybody waits for a client that takes nothing
    std::size_t memory = SpillStore::defaultMemory;
};

struct ReplyHead {
    unsigned status = 200;
    std::vector<std::pair<std::string, std::string>> fields;
};

class ReplyStream {
public:
    ReplyStream(Socket& socket, ReplyBuffer& buffer, StreamLimits limits);
    ReplyStream(const ReplyStream&) = delete;
    ReplyStream& operator=(const ReplyStream&) = delete;
    ~ReplyStream();

    // Before anything is written: what the client understands, and whether the connection is to stay.
    void begin(unsigned version, bool keepAlive, bool trailers);
    void setHead(ReplyHead head) { _head = std::move(head); }
    ReplyHead& head() noexcept { return _head; }

    ReplyBuffer& buffer() noexcept { return _buffer; }
    // Called after each element of the body; false when the client is gone.
    bool elementWritten() { return _buffer.size() < _limits.chunk || sendChunk(); }
    void providerBegins() noexcept { _providerRuns = true; }
    void providerEnds() noexcept { _providerRuns = false; }

    bool started() const noexcept { return _started; } // bytes left; the body cannot be replaced any more
    bool alive() const noexcept { return _alive; }
    bool spilled() const noexcept { return _spill != nullptr; }

    // An error after the start, for clients that said they take trailers; false if this one did not, and then only
    // abort() tells it that the body is not complete.
    bool addTrailer(std::string name, std::string value);
    // Sends what is left. False if the connection cannot be used again.
    bool finish();
    // Ends the connection in the middle of the body.
    void abort() noexcept;

private:
    std::string headText(bool lengthKnown) const;
    bool sendChunk();
    bool put(iovec* pieces, int count);
    bool drain();
    void spill(const iovec* pieces, int count);

    Socket& _socket;
    ReplyBuffer& _buffer;
    StreamLimits _limits;
    ReplyHead _head;
    std::vector<std::pair<std::string, std::string>> _trailers;
    std::unique_ptr<SpillStore> _spill;
    Clock::duration _waited{}; // for the client while a provider ran
    std::uint64_t _sent = 0;
    unsigned _version = 11;
    bool _keepAlive = true;
    bool _takesTrailers = false;
    bool _started = false;
    bool _alive = true;
    bool _providerRuns = false;
};

} // namespace KDV::Host
