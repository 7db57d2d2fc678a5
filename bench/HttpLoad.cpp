// A load from outside: sends CIM-XML requests over one kept connection on loopback and measures replies a second, bytes
// a second and the time to the first byte. It reads replies with as little work as it can (the client shares the
// machine with the server) after one reply was counted in full. Only loopback addresses are taken.
#include <arpa/inet.h>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// Reads one HTTP reply at a time, with a length or in chunks.
class Connection {
public:
    explicit Connection(std::uint16_t port) : _buffer(1 << 20)
    {
        _socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const int one = 1;
        ::setsockopt(_socket, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        if (::connect(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("cannot connect to 127.0.0.1:" + std::to_string(port));
    }
    ~Connection() { ::close(_socket); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void send(const std::string& bytes)
    {
        for (std::size_t at = 0; at < bytes.size();) {
            const ssize_t n = ::send(_socket, bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
            if (n <= 0) throw std::runtime_error("the server does not take the request");
            at += static_cast<std::size_t>(n);
        }
    }

    // Gives the number of body bytes; keeps the body when asked to.
    std::uint64_t reply(Clock::time_point start, double& firstByte, std::string* body)
    {
        _begin = _end = 0;
        fill();
        firstByte = secondsSince(start);
        std::string head;
        while (head.size() < 4 || head.compare(head.size() - 4, 4, "\r\n\r\n") != 0)
            head += static_cast<char>(next());
        if (head.compare(0, 12, "HTTP/1.1 200") != 0)
            throw std::runtime_error("the server answers " + head.substr(0, head.find('\r')));
        if (strcasestr(head.c_str(), "transfer-encoding: chunked")) return chunks(body);
        const char* length = strcasestr(head.c_str(), "content-length:");
        if (!length) throw std::runtime_error("a reply without a length");
        const std::uint64_t count = std::strtoull(length + 15, nullptr, 10);
        take(count, body);
        return count;
    }

private:
    void fill()
    {
        const ssize_t n = ::recv(_socket, _buffer.data(), _buffer.size(), 0);
        if (n <= 0) throw std::runtime_error("the server closed the connection");
        _begin = 0;
        _end = static_cast<std::size_t>(n);
    }
    unsigned char next()
    {
        if (_begin == _end) fill();
        return static_cast<unsigned char>(_buffer[_begin++]);
    }
    void take(std::uint64_t count, std::string* body)
    {
        while (count > 0) {
            if (_begin == _end) fill();
            const std::size_t n = std::min<std::uint64_t>(count, _end - _begin);
            if (body) body->append(_buffer.data() + _begin, n);
            _begin += n;
            count -= n;
        }
    }
    std::uint64_t chunks(std::string* body)
    {
        std::uint64_t total = 0;
        for (;;) {
            std::string line;
            for (char c = static_cast<char>(next()); c != '\n'; c = static_cast<char>(next()))
                line += c;
            const std::uint64_t size = std::strtoull(line.c_str(), nullptr, 16);
            take(size, body);
            total += size;
            if (size == 0) break;
            next(); // CR
            next(); // LF
        }
        std::string line = "x"; // trailers up to the empty line
        while (line != "\r") {
            line.clear();
            for (char c = static_cast<char>(next()); c != '\n'; c = static_cast<char>(next()))
                line += c;
        }
        return total;
    }

    int _socket;
    std::vector<char> _buffer;
    std::size_t _begin = 0;
    std::size_t _end = 0;
};

std::string request(const std::string& method, const std::string& parameters)
{
    const std::string body =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" "
        "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"" +
        method + "\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"vnr\"/></LOCALNAMESPACEPATH>" +
        parameters + "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    return "POST /cimom HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/xml; charset=\"utf-8\"\r\n"
           "CIMOperation: MethodCall\r\nCIMMethod: " +
           method + "\r\nCIMObject: root/vnr\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string className(const std::string& name)
{
    return "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"" + name + "\"/></IPARAMVALUE>";
}

std::uint64_t occurrences(const std::string& text, const std::string& part)
{
    std::uint64_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

// The first instance name in a reply of EnumerateInstanceNames.
std::string nthName(const std::string& body, std::size_t n)
{
    std::size_t at = 0;
    for (std::size_t i = 0; i <= n; ++i)
        at = body.find("<INSTANCENAME ", at + 1);
    return body.substr(at, body.find("</INSTANCENAME>", at) + 15 - at);
}

void measure(Connection& connection, const char* what, const std::vector<std::string>& requests, const char* element,
             double seconds)
{
    double firstByte = 0;
    std::string body;
    connection.send(requests[0]);
    connection.reply(Clock::now(), firstByte, &body);
    const std::uint64_t elements = occurrences(body, element);
    if (elements == 0)
        throw std::runtime_error(std::string(what) + ": the reply has no " + element + ": " + body.substr(0, 400));

    std::uint64_t count = 0;
    std::uint64_t bytes = 0;
    double worstFirst = 0;
    double sumFirst = 0;
    const auto start = Clock::now();
    while (secondsSince(start) < seconds) {
        const auto sent = Clock::now();
        connection.send(requests[count % requests.size()]);
        bytes += connection.reply(sent, firstByte, nullptr);
        worstFirst = std::max(worstFirst, firstByte);
        sumFirst += firstByte;
        ++count;
    }
    const double took = secondsSince(start);
    const double n = static_cast<double>(count);
    std::printf("%-24s %12.0f elements/s %10.0f requests/s %8.1f MB/s  first byte %.3f ms mean, %.3f ms worst\n", what,
                n * static_cast<double>(elements) / took, n / took, static_cast<double>(bytes) / took / 1e6,
                1e3 * sumFirst / n, 1e3 * worstFirst);
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "Usage: kdv-http-load PORT [SECONDS]\n");
        return 2;
    }
    const int port = std::atoi(argv[1]);
    if (port < 1 || port > 65535) {
        std::fprintf(stderr, "kdv-http-load: PORT is a number from 1 to 65535\n");
        return 2;
    }
    const double seconds = argc > 2 ? std::atof(argv[2]) : 3;
    Connection connection(static_cast<std::uint16_t>(port));

    double firstByte = 0;
    std::string names;
    connection.send(request("EnumerateInstanceNames", className("KDV_SASDiskDrive")));
    connection.reply(Clock::now(), firstByte, &names);
    const std::uint64_t disks = occurrences(names, "<INSTANCENAME ");
    if (disks == 0) throw std::runtime_error("the server has no KDV_SASDiskDrive");

    std::vector<std::string> gets;
    std::vector<std::string> hops;
    for (std::uint64_t i = 0; i < 64 && i < disks; ++i) {
        const std::string name = nthName(names, i * disks / 64 % disks);
        gets.push_back(request("GetInstance", "<IPARAMVALUE NAME=\"InstanceName\">" + name + "</IPARAMVALUE>"));
        hops.push_back(request("Associators", "<IPARAMVALUE NAME=\"ObjectName\">" + name + "</IPARAMVALUE>" +
                                                  "<IPARAMVALUE NAME=\"AssocClass\"><CLASSNAME "
                                                  "NAME=\"KDV_SASDiskPhysicalPackageDiskDrive\"/></IPARAMVALUE>"));
    }
    std::printf("disks %llu\n", static_cast<unsigned long long>(disks));
    measure(connection, "EnumerateInstances", {request("EnumerateInstances", className("KDV_SASDiskDrive"))},
            "<VALUE.NAMEDINSTANCE>", seconds);
    measure(connection, "EnumerateInstanceNames", {request("EnumerateInstanceNames", className("KDV_SASDiskDrive"))},
            "<INSTANCENAME ", seconds);
    measure(connection, "GetInstance", gets, "<INSTANCE ", seconds);
    measure(connection, "Associators", hops, "<INSTANCE ", seconds);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "kdv-http-load: %s\n", error.what());
    return 1;
}
