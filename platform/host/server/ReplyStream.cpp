#include "hostserver/ReplyStream.h"

#include "hostserver/HttpStatus.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace KDV::Host {

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view lastChunk = "0\r\n";

iovec piece(std::string_view bytes) { return {const_cast<char*>(bytes.data()), bytes.size()}; }

std::string chunkHead(std::size_t size)
{
    std::array<char, 20> text;
    char* end = std::to_chars(text.data(), text.data() + text.size(), size, 16).ptr;
    *end++ = '\r';
    *end++ = '\n';
    return {text.data(), end};
}

} // namespace

ReplyStream::ReplyStream(Socket& socket, ReplyBuffer& buffer, StreamLimits limits)
    : _socket(socket), _buffer(buffer), _limits(limits)
{
    _buffer.clear();
}

ReplyStream::~ReplyStream() = default;

void ReplyStream::begin(unsigned version, bool keepAlive, bool trailers)
{
    _version = version;
    _keepAlive = keepAlive;
    _takesTrailers = trailers && version >= 11;
}

bool ReplyStream::addTrailer(std::string name, std::string value)
{
    if (!_takesTrailers) return false;
    _trailers.emplace_back(std::move(name), std::move(value));
    return true;
}

std::string ReplyStream::headText(bool lengthKnown) const
{
    std::string text = "HTTP/1.1 " + std::to_string(_head.status) + ' ' + httpReason(_head.status) + "\r\n";
    const auto field = [&text](std::string_view name, std::string_view value) {
        text.append(name).append(": ").append(value).append(lineEnd);
    };
    for (const auto& [name, value] : _head.fields)
        field(name, value);
    if (lengthKnown)
        field("Content-Length", std::to_string(_buffer.size()));
    else if (_version >= 11)
        field("Transfer-Encoding", "chunked");
    if (!_keepAlive || (!lengthKnown && _version < 11))
        field("Connection", "close");
    else if (_version < 11)
        field("Connection", "keep-alive");
    text += lineEnd;
    return text;
}

bool ReplyStream::sendChunk()
{
    if (!_alive) return false;
    if (_buffer.empty()) return true;
    const bool chunked = _version >= 11;
    std::string head = _started ? std::string() : headText(false);
    _started = true;
    if (chunked) head += chunkHead(_buffer.size());
    std::array<iovec, 3> pieces{piece(head), piece(_buffer.view()), piece(chunked ? lineEnd : std::string_view())};
    const bool good = put(pieces.data(), static_cast<int>(pieces.size()));
    _buffer.clear();
    return good;
}

bool ReplyStream::put(iovec* pieces, int count)
{
    if (_spill && _providerRuns) {
        spill(pieces, count);
        return true;
    }
    if (_spill && !drain()) return false;
    for (int i = 0; i < count; ++i)
        _sent += pieces[i].iov_len;
    const auto begin = Clock::now();
    // Slow is also who takes a little again and again: the time waited for a client counts against its whole reply,
    // at the least rate that a provider is held for.
    constexpr std::uint64_t leastRate = 4u << 20; // bytes a second
    const auto allowed = _limits.stall + std::chrono::milliseconds(_sent * 1000 / leastRate) -
                         std::chrono::duration_cast<std::chrono::milliseconds>(_waited);
    const auto wait =
        _providerRuns ? std::min(_limits.stall, std::max(allowed, std::chrono::milliseconds(0))) : _limits.patience;
    const IoResult result = _socket.send(pieces, count, begin + wait);
    if (_providerRuns) _waited += Clock::now() - begin;
    if (result == IoResult::Late && _providerRuns) {
        _spill = std::make_unique<SpillStore>(_limits.memory);
        spill(pieces, count);
        return true;
    }
    _alive = result == IoResult::Done;
    return _alive;
}

void ReplyStream::spill(const iovec* pieces, int count)
{
    for (; count > 0; --count, ++pieces)
        _spill->append({static_cast<const char*>(pieces->iov_base), pieces->iov_len});
}

// Sends what was put aside, in order, before anything newer.
bool ReplyStream::drain()
{
    const std::unique_ptr<SpillStore> store = std::move(_spill);
    std::string block(_limits.chunk, '\0');
    for (std::uint64_t at = 0; at < store->size();) {
        const std::size_t size = store->read(at, block.data(), block.size());
        iovec one{block.data(), size};
        iovec* pieces = &one;
        int count = 1;
        _alive = _socket.send(pieces, count, Clock::now() + _limits.patience) == IoResult::Done;
        if (!_alive) return false;
        at += size;
    }
    return true;
}

bool ReplyStream::finish()
{
    _providerRuns = false;
    if (!_alive) return false;
    std::string head;
    std::string tail;
    if (!_started) {
        head = headText(true);
    } else if (_version >= 11) {
        if (!_buffer.empty()) {
            head = chunkHead(_buffer.size());
            tail = lineEnd;
        }
        tail += lastChunk;
        for (const auto& [name, value] : _trailers)
            tail.append(name).append(": ").append(value).append(lineEnd);
        tail += lineEnd;
    } else {
        _keepAlive = false; // the end of the connection is the end of the body
    }
    _started = true;
    std::array<iovec, 3> pieces{piece(head), piece(_buffer.view()), piece(tail)};
    const bool good = put(pieces.data(), static_cast<int>(pieces.size()));
    _buffer.clear();
    return good && _keepAlive;
}

void ReplyStream::abort() noexcept
{
    _alive = false;
    _socket.cut(true);
}

} // namespace KDV::Host
