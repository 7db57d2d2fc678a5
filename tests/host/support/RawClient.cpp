#include "hosttest/RawClient.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace KDV::Host::Test {

namespace {

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

void addField(std::map<std::string, std::string>& fields, const std::string& line)
{
    const std::size_t colon = line.find(':');
    if (colon == line.npos) throw std::runtime_error("no header field: " + line);
    const std::size_t value = line.find_first_not_of(" \t", colon + 1);
    fields[lower(line.substr(0, colon))] = value == line.npos ? "" : line.substr(value);
}

} // namespace

std::string RawReply::field(const std::string& name) const
{
    const auto found = fields.find(lower(name));
    return found == fields.end() ? std::string() : found->second;
}

RawClient::RawClient(std::uint16_t port)
{
    _socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const timeval longest{60, 0};
    ::setsockopt(_socket, SOL_SOCKET, SO_RCVTIMEO, &longest, sizeof longest);
    ::setsockopt(_socket, SOL_SOCKET, SO_SNDTIMEO, &longest, sizeof longest);
    if (::connect(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("cannot connect");
}

RawClient::~RawClient() { ::close(_socket); }

void RawClient::send(const std::string& bytes)
{
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t sent = ::send(_socket, bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
        if (sent <= 0) throw std::runtime_error("cannot send");
        at += static_cast<std::size_t>(sent);
    }
}

void RawClient::endSending() { ::shutdown(_socket, SHUT_WR); }

bool RawClient::fill()
{
    std::array<char, 65536> block;
    const ssize_t got = ::recv(_socket, block.data(), block.size(), 0);
    if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) throw std::runtime_error("the server hangs");
    if (got <= 0) return false;
    _input.append(block.data(), static_cast<std::size_t>(got));
    return true;
}

std::string RawClient::readSome(std::size_t atMost)
{
    std::string some(atMost, '\0');
    const ssize_t got = ::recv(_socket, some.data(), some.size(), 0);
    some.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    _input += some;
    return some;
}

std::string RawClient::line()
{
    std::size_t end;
    while ((end = _input.find("\r\n")) == _input.npos)
        if (!fill()) throw std::runtime_error("the connection ended inside a line: \"" + _input + "\"");
    std::string text = _input.substr(0, end);
    _input.erase(0, end + 2);
    return text;
}

void RawClient::readChunks(RawReply& reply)
{
    for (;;) {
        if (_input.empty() && !fill()) {
            reply.truncated = true;
            return;
        }
        const std::size_t size = std::stoul(line(), nullptr, 16);
        if (size == 0) break;
        while (_input.size() < size + 2)
            if (!fill()) {
                reply.truncated = true;
                reply.body += _input;
                return;
            }
        reply.body.append(_input, 0, size);
        if (_input.compare(size, 2, "\r\n") != 0) throw std::runtime_error("a chunk does not end with a line end");
        _input.erase(0, size + 2);
    }
    for (std::string text = line(); !text.empty(); text = line())
        addField(reply.trailers, text);
}

RawReply RawClient::read()
{
    RawReply reply;
    const std::string start = line();
    if (start.compare(0, 9, "HTTP/1.1 ") != 0) throw std::runtime_error("no status line: " + start);
    reply.status = static_cast<unsigned>(std::stoul(start.substr(9)));
    reply.head = start + "\n";
    for (std::string text = line(); !text.empty(); text = line()) {
        addField(reply.fields, text);
        reply.head += text + "\n";
    }
    if (reply.status == 100) return reply;
    reply.chunked = lower(reply.field("transfer-encoding")) == "chunked";
    if (reply.chunked) {
        readChunks(reply);
    } else if (reply.fields.count("content-length")) {
        const std::size_t size = std::stoul(reply.field("content-length"));
        while (_input.size() < size && fill())
            continue;
        reply.truncated = _input.size() < size;
        reply.body = _input.substr(0, size);
        _input.erase(0, size);
    } else {
        while (fill())
            continue;
        reply.body.swap(_input);
    }
    return reply;
}

bool RawClient::closedByServer() { return _input.empty() && !fill(); }

} // namespace KDV::Host::Test
