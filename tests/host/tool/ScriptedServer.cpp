#include "ScriptedServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

ScriptedServer::ScriptedServer(std::string answer) : ScriptedServer(Way::AnswerAndClose, std::move(answer)) {}

ScriptedServer::ScriptedServer(Way way, std::string answer) : _way(way), _answer(std::move(answer))
{
    _listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || ::pipe(_wake) != 0)
        throw std::runtime_error("no port for a scripted server");
    if (_way == Way::Refuse) return;
    if (::listen(_listener, 16) != 0) throw std::runtime_error("listen");
    _thread = std::thread([this] { serve(); });
}

ScriptedServer::~ScriptedServer()
{
    ::close(_wake[1]); // the thread sees the end of the pipe
    if (_thread.joinable()) _thread.join();
    for (int socket : _silent)
        ::close(socket);
    ::close(_wake[0]);
    ::close(_listener);
}

std::string ScriptedServer::url() const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(_listener, reinterpret_cast<sockaddr*>(&address), &size);
    return "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

std::vector<std::string> ScriptedServer::asked() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _asked;
}

void ScriptedServer::serve()
{
    for (;;) {
        pollfd polled[2] = {{_listener, POLLIN, 0}, {_wake[0], POLLIN, 0}};
        if (::poll(polled, 2, -1) < 0) continue;
        if (polled[1].revents) return;
        const int socket = ::accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket >= 0) answerOne(socket);
    }
}

void ScriptedServer::answerOne(int socket)
{
    if (_way == Way::SayNothing) {
        _silent.push_back(socket);
        return;
    }
    std::string asked;
    if (_way == Way::AnswerAndClose) {
        const timeval longest{60, 0};
        ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &longest, sizeof longest);
        char block[4096];
        while (asked.find("</CIM>") == std::string::npos) {
            const ssize_t got = ::recv(socket, block, sizeof block, 0);
            if (got <= 0) break;
            asked.append(block, static_cast<std::size_t>(got));
        }
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _asked.push_back(asked);
        }
        for (std::size_t sent = 0; sent < _answer.size();) {
            const ssize_t count = ::send(socket, _answer.data() + sent, _answer.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) break;
            sent += static_cast<std::size_t>(count);
        }
    }
    ::close(socket);
}

std::string httpAnswer(const std::string& body, const std::string& status)
{
    return "HTTP/1.1 " + status +
           "\r\nContent-Type: application/xml\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

std::string cimAnswer(const std::string& method, const std::string& content)
{
    return httpAnswer("<?xml version=\"1.0\" encoding=\"utf-8\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE "
                      "ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP><IMETHODRESPONSE NAME=\"" +
                      method + "\">" + content + "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>");
}
