#include "hostserver/HttpServer.h"

#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace KDV::Host {

namespace {

constexpr std::size_t readSize = 64u << 10;
constexpr std::size_t keptBuffer = 256u << 10;
constexpr std::chrono::milliseconds lingering{1000};

// Replies that HTTP itself demands have no body: their reader may not be a CIM client at all.
void refuse(ReplyStream& reply, unsigned version, unsigned status)
{
    reply.begin(version, false, false);
    reply.head().status = status;
    reply.finish();
}

} // namespace

HttpService::~HttpService() = default;
HttpService::Session::~Session() = default;

HttpServer::HttpServer(HttpService& service, ServerLimits limits) : _service(service), _limits(limits)
{
    _wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (_wake < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

HttpServer::~HttpServer()
{
    stop();
    ::close(_wake);
}

Endpoint HttpServer::listen(const Endpoint& endpoint)
{
    Endpoint bound;
    _listeners.push_back(listenAt(endpoint, bound));
    return bound;
}

void HttpServer::start()
{
    _acceptor = std::thread([this] { acceptLoop(); });
}

void HttpServer::stop()
{
    if (!_acceptor.joinable()) return;
    _stopping = true;
    ::eventfd_write(_wake, 1);
    _acceptor.join();
    _listeners.clear();
    const auto deadline = Clock::now() + _limits.farewell;
    for (bool waiting = true; waiting;) {
        waiting = false;
        const std::lock_guard lock(_mutex);
        const bool late = Clock::now() >= deadline;
        for (const auto& connection : _connections)
            if (!connection->ended) {
                // One that is being served may finish, unless it takes too long.
                connection->socket.cut(late);
                waiting = waiting || !late;
            }
        if (waiting) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    reap(true);
}

void HttpServer::acceptLoop()
{
    std::vector<pollfd> items;
    for (const Socket& listener : _listeners)
        items.push_back({listener.descriptor(), POLLIN, 0});
    items.push_back({_wake, POLLIN, 0});
    while (!_stopping) {
        if (::poll(items.data(), items.size(), -1) < 0 && errno != EINTR) return;
        if (items.back().revents) {
            eventfd_t scrap;
            ::eventfd_read(_wake, &scrap);
        }
        reap(false);
        for (std::size_t i = 0; i < _listeners.size() && !_stopping; ++i)
            if (items[i].revents) accept(_listeners[i]);
    }
}

void HttpServer::accept(const Socket& listener)
{
    Socket socket(::accept4(listener.descriptor(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.descriptor() < 0) {
        // Out of descriptors: the waiting connection would make poll return at once, again and again.
        if (errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS) {
            pollfd item{_wake, POLLIN, 0};
            ::poll(&item, 1, 100);
        }
        return;
    }
    const int on = 1;
    ::setsockopt(socket.descriptor(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const std::lock_guard lock(_mutex);
    if (_connections.size() >= _limits.connections) {
        ReplyBuffer buffer;
        ReplyStream reply(socket, buffer, _limits.stream);
        refuse(reply, 11, 503);
        return;
    }
    auto connection = std::make_unique<Connection>();
    connection->socket = std::move(socket);
    Connection& at = *connection;
    _connections.push_back(std::move(connection));
    try {
        at.thread = std::thread([this, &at] { run(at); });
    } catch (const std::system_error&) {
        _connections.pop_back(); // no more threads: the client sees the connection close
    }
}

void HttpServer::reap(bool all)
{
    std::list<std::unique_ptr<Connection>> gone;
    {
        const std::lock_guard lock(_mutex);
        for (auto at = _connections.begin(); at != _connections.end();) {
            const auto next = std::next(at);
            if (all || (*at)->ended) gone.splice(gone.end(), _connections, at);
            at = next;
        }
    }
    for (const auto& connection : gone)
        connection->thread.join();
}

void HttpServer::run(Connection& connection)
{
    try {
        HttpRequestReader reader(_limits.http);
        std::string input;
        ReplyBuffer buffer;
        const auto session = _service.newSession();
        while (!_stopping && serveOne(connection, reader, input, buffer, session.get()))
            buffer.trim(keptBuffer);
    } catch (const std::exception&) {
        // Out of memory or disk: this connection ends, the others go on.
    }
    connection.socket.cut(true);
    connection.ended = true;
    ::eventfd_write(_wake, 1);
}

namespace {

// Reads one request, as far as it gets; HttpError for what must be answered with an error.
class Receiving {
public:
    Receiving(Socket& socket, HttpRequestReader& reader, std::string& input, const ServerLimits& limits)
        : _socket(socket), _reader(reader), _input(input), _limits(limits)
    {
    }

    // True at the end of the head, then at the end of the body; false if the peer is gone or was idle for too long.
    bool head()
    {
        const auto opened = Clock::now();
        for (;;) {
            if (!_begun) _input.erase(0, _input.find_first_not_of("\r\n")); // allowed between requests
            if (!_input.empty()) {
                if (!_begun) _start = Clock::now();
                _begun = true;
                feed();
            }
            if (_reader.headComplete()) return true;
            if (!receive(_begun ? _start + _limits.head : opened + _limits.idle)) return false;
        }
    }
    bool body()
    {
        while (!_reader.complete()) {
            if (!_input.empty() && feed()) continue;
            if (!receive(_start + _limits.request)) return false;
        }
        return true;
    }

private:
    bool feed()
    {
        const std::size_t taken = _reader.take(_input);
        _input.erase(0, taken);
        return taken > 0;
    }
    bool receive(Clock::time_point deadline)
    {
        const std::size_t had = _input.size();
        _input.resize(had + readSize);
        std::size_t count = 0;
        const IoResult result = _socket.receive(_input.data() + had, readSize, deadline, count);
        _input.resize(had + count);
        if (result == IoResult::Done) return true;
        if (!_begun) return false;
        throw HttpError(result == IoResult::Late ? 408 : 400, "the request did not come to its end");
    }

    Socket& _socket;
    HttpRequestReader& _reader;
    std::string& _input;
    const ServerLimits& _limits;
    Clock::time_point _start;
    bool _begun = false;
};

bool takesTrailers(const HttpRequest& request)
{
    const std::string* field = request.find("TE");
    return field && field->find("trailers") != field->npos;
}

} // namespace

bool HttpServer::serveOne(Connection& connection, HttpRequestReader& reader, std::string& input, ReplyBuffer& buffer,
                          HttpService::Session* session)
{
    ReplyStream reply(connection.socket, buffer, _limits.stream);
    try {
        Receiving receiving(connection.socket, reader, input, _limits);
        if (!receiving.head()) return false;
        if (const unsigned status = _service.precheck(reader.method(), reader.target(), reply.head()))
            throw HttpError(status, "refused by the service");
        if (!reader.complete() && reader.expectsContinue() && input.empty()) {
            std::string text = "HTTP/1.1 100 Continue\r\n\r\n";
            iovec one{text.data(), text.size()};
            iovec* pieces = &one;
            int count = 1;
            if (connection.socket.send(pieces, count, Clock::now() + _limits.stream.patience) != IoResult::Done)
                return false;
        }
        if (!receiving.body()) return false;
    } catch (const HttpError& error) {
        refuse(reply, 11, error.status());
        connection.socket.linger(Clock::now() + lingering);
        return false;
    }
    const HttpRequest request = reader.release();
    reply.begin(request.version, request.keepAlive && !_stopping, takesTrailers(request));
    _service.serve(request, session, reply);
    if (reply.finish()) return true;
    if (reply.alive()) connection.socket.linger(Clock::now() + lingering);
    return false;
}

} // namespace KDV::Host
