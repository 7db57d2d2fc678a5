// An HTTP/1.1 server for one kind of service: a thread for each connection, up to a limit. start() listens and returns;
// stop() ends listening, lets requests that are being served finish for a while, and returns when every thread has
// ended. The service is called on the connections' threads, many at once, and must outlive the server.
#pragma once

#include "hostserver/HttpRequestReader.h"
#include "hostserver/ReplyStream.h"
#include "hostserver/Socket.h"

#include <atomic>
#include <chrono>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace KDV::Host {

class HttpService {
public:
    virtual ~HttpService();
    // What a connection keeps from request to request; may be null.
    class Session {
    public:
        virtual ~Session();
    };
    virtual std::unique_ptr<Session> newSession() = 0;
    // Before the body is read: 0 to go on, or the status that the request gets at once, with the fields in `head`.
    virtual unsigned precheck(const std::string& method, const std::string& target, ReplyHead& head) = 0;
    // Sets the head and writes the body into the stream; the server finishes it.
    virtual void serve(const HttpRequest& request, Session* session, ReplyStream& reply) = 0;
};

struct ServerLimits {
    HttpLimits http;
    StreamLimits stream;
    unsigned connections = 64;
    std::chrono::milliseconds idle{60'000};    // between requests
    std::chrono::milliseconds head{10'000};    // from the first byte of a head to its last
    std::chrono::milliseconds request{60'000}; // from the first byte of a head to the last of the body
    std::chrono::milliseconds farewell{5'000}; // for requests in service when the server stops
};

class HttpServer {
public:
    HttpServer(HttpService& service, ServerLimits limits);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    Endpoint listen(const Endpoint& endpoint); // where it really listens
    void start();
    void stop();

private:
    struct Connection {
        Socket socket;
        std::thread thread;
        std::atomic<bool> ended{false};
    };
    void acceptLoop();
    void accept(const Socket& listener);
    void reap(bool all);
    void run(Connection& connection);
    bool serveOne(Connection& connection, HttpRequestReader& reader, std::string& input, ReplyBuffer& buffer,
                  HttpService::Session* session);

    HttpService& _service;
    ServerLimits _limits;
    std::vector<Socket> _listeners;
    int _wake = -1; // an eventfd: becomes readable when the server stops
    std::thread _acceptor;
    std::mutex _mutex; // guards _connections
    std::list<std::unique_ptr<Connection>> _connections;
    std::atomic<bool> _stopping{false};
};

} // namespace KDV::Host
