#include "listenertest/TestListener.h"

#include <arpa/inet.h>
#include <cstring>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::chrono::seconds patience{120};

bool sendAll(int socket, const std::string& text)
{
    std::size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t count = ::send(socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

std::string between(const std::string& text, const std::string& before, const std::string& after)
{
    const std::size_t begin = text.find(before);
    if (begin == std::string::npos) return "none";
    const std::size_t end = text.find(after, begin + before.size());
    return text.substr(begin + before.size(), end - begin - before.size());
}

std::string http(const std::string& body, const std::string& status = "200 OK")
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: application/xml\r\nCIMExport: MethodResponse\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string response(const std::string& id, const std::string& content)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.4\"><MESSAGE ID=\"" + id +
           "\" PROTOCOLVERSION=\"1.4\"><SIMPLEEXPRSP><EXPMETHODRESPONSE NAME=\"ExportIndication\">" + content +
           "</EXPMETHODRESPONSE></SIMPLEEXPRSP></MESSAGE></CIM>";
}

std::string error(int code) { return "<ERROR CODE=\"" + std::to_string(code) + "\" DESCRIPTION=\"as told\"/>"; }

} // namespace

std::string TestListener::Message::value(const std::string& property) const
{
    const std::size_t at = body.find("<PROPERTY NAME=\"" + property + "\"");
    return at == std::string::npos ? "none" : between(body.substr(at), "<VALUE>", "</VALUE>");
}

std::string TestListener::Message::attribute(const std::string& name) const
{
    return between(body, ' ' + name + "=\"", "\"");
}

TestListener::TestListener()
{
    _listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::getsockname(_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("no port for the test's listener");
    _port = ntohs(address.sin_port);
}

TestListener::~TestListener()
{
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _stopping = true;
        for (int socket : _sockets)
            ::shutdown(socket, SHUT_RDWR);
        _signal.notify_all();
    }
    ::shutdown(_listener, SHUT_RDWR);
    if (_acceptor.joinable()) _acceptor.join();
    for (std::thread& thread : _threads)
        thread.join();
    ::close(_listener);
}

void TestListener::listen()
{
    if (::listen(_listener, 16) != 0) throw std::runtime_error("listen");
    _acceptor = std::thread([this] { acceptLoop(); });
}

std::string TestListener::url(const std::string& path) const
{
    return "http://127.0.0.1:" + std::to_string(_port) + path;
}

void TestListener::reply(Reply with, unsigned times)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _script.insert(_script.end(), times, with);
}

void TestListener::release()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _released = true;
    _signal.notify_all();
}

bool TestListener::waitForTaken(std::size_t count)
{
    std::unique_lock<std::mutex> lock(_mutex);
    return _signal.wait_for(lock, patience, [&] { return _taken.size() >= count; });
}

bool TestListener::waitForReceived(std::size_t count)
{
    std::unique_lock<std::mutex> lock(_mutex);
    return _signal.wait_for(lock, patience, [&] { return _received.size() >= count; });
}

std::vector<TestListener::Message> TestListener::taken() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _taken;
}

std::vector<TestListener::Message> TestListener::received() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _received;
}

std::vector<std::string> TestListener::takenValues(const std::string& property) const
{
    std::vector<std::string> values;
    for (const Message& message : taken())
        values.push_back(message.value(property));
    return values;
}

unsigned TestListener::connections() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _connections;
}

void TestListener::acceptLoop()
{
    for (;;) {
        const int socket = ::accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) return;
        const std::lock_guard<std::mutex> lock(_mutex);
        if (_stopping) {
            ::close(socket);
            return;
        }
        ++_connections;
        _sockets.push_back(socket);
        _threads.emplace_back([this, socket] { serve(socket); });
    }
}

void TestListener::serve(int socket)
{
    std::string buffer;
    Message message;
    while (readMessage(socket, buffer, message)) {
        Reply with = Reply::Ok;
        {
            std::unique_lock<std::mutex> lock(_mutex);
            if (!_script.empty()) {
                with = _script.front();
                _script.pop_front();
            }
            _received.push_back(message);
            _signal.notify_all();
            if (with == Reply::Hold) _signal.wait(lock, [this] { return _released || _stopping; });
        }
        if (!answer(socket, with, message)) break;
    }
    const std::lock_guard<std::mutex> lock(_mutex);
    _sockets.remove(socket);
    ::close(socket);
}

// Content-Length only, as real listeners have it.
bool TestListener::readMessage(int socket, std::string& buffer, Message& message)
{
    const auto more = [&] {
        char block[4096];
        const ssize_t count = ::recv(socket, block, sizeof block, 0);
        if (count > 0) buffer.append(block, static_cast<std::size_t>(count));
        return count > 0;
    };
    std::size_t end;
    while ((end = buffer.find("\r\n\r\n")) == std::string::npos)
        if (!more()) return false;
    message.head = buffer.substr(0, end);
    buffer.erase(0, end + 4);
    const std::size_t length = std::stoul(between(message.head + "\r\n", "Content-Length: ", "\r\n"));
    while (buffer.size() < length)
        if (!more()) return false;
    message.body = buffer.substr(0, length);
    buffer.erase(0, length);
    return true;
}

bool TestListener::answer(int socket, Reply with, const Message& message)
{
    const std::string id = message.attribute("ID");
    switch (with) {
    case Reply::Ok:
    case Reply::Hold: {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _taken.push_back(message);
            _signal.notify_all();
        }
        return sendAll(socket, http(response(id, "<IRETURNVALUE/>")));
    }
    case Reply::Http500:
        return sendAll(socket, http("", "500 Internal Server Error"));
    case Reply::CimFailed:
        return sendAll(socket, http(response(id, error(1))));
    case Reply::CimNotSupported:
        return sendAll(socket, http(response(id, error(7))));
    case Reply::Close:
        return false;
    case Reply::CloseInBody: {
        const std::string whole = http(response(id, "<IRETURNVALUE/>"));
        sendAll(socket, whole.substr(0, whole.size() - 40));
        return false;
    }
    case Reply::NoXml:
        return sendAll(socket, http("<html><body>It works!</body>"));
    case Reply::OtherMessageId:
        return sendAll(socket, http(response("x" + id, "<IRETURNVALUE/>")));
    case Reply::EmptyBody:
        return sendAll(socket, http(""));
    case Reply::HugeBody:
        sendAll(socket, http(std::string(1u << 20, ' ')));
        return false;
    }
    return false;
}
