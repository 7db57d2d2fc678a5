#include "kdv-sas/Listener.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

namespace KdvSas {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::ip::tcp;

constexpr std::uint64_t largestBody = 4u << 20;
constexpr std::uint32_t largestHeader = 16u << 10;
constexpr auto patience = std::chrono::seconds(60);

std::string exportReply(const std::string& messageId, int code)
{
    const std::string content =
        code == 0 ? "<IRETURNVALUE/>" : "<ERROR CODE=\"" + std::to_string(code) + "\" DESCRIPTION=\"not taken now\"/>";
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"" +
           messageId + "\" PROTOCOLVERSION=\"1.0\"><SIMPLEEXPRSP><EXPMETHODRESPONSE NAME=\"ExportIndication\">" +
           content + "</EXPMETHODRESPONSE></SIMPLEEXPRSP></MESSAGE></CIM>";
}

std::string attributeText(const std::string& text)
{
    std::string result;
    for (const char c : text)
        if (c != '<' && c != '&' && c != '"') result += c;
    return result;
}

class Session : public std::enable_shared_from_this<Session> {
public:
    Session(tcp::socket socket, const Listener::OnIndication& onIndication)
        : _stream(std::move(socket)), _onIndication(onIndication)
    {
    }

    void read()
    {
        _parser.emplace();
        _parser->body_limit(largestBody);
        _parser->header_limit(largestHeader);
        _stream.expires_after(patience);
        http::async_read(_stream, _buffer, *_parser,
                         [self = shared_from_this()](beast::error_code error, std::size_t) { self->answer(error); });
    }

private:
    void answer(beast::error_code error)
    {
        if (error) return;
        const http::request<http::string_body> request = _parser->release();
        _response = {};
        _response.version(request.version());
        _response.keep_alive(request.keep_alive());
        if (request.method() != http::verb::post)
            _response.result(http::status::method_not_allowed);
        else
            take(request.body());
        _response.prepare_payload();
        _stream.expires_after(patience);
        http::async_write(_stream, _response, [self = shared_from_this()](beast::error_code failed, std::size_t) {
            if (!failed && self->_response.keep_alive()) self->read();
        });
    }

    void take(const std::string& body)
    {
        try {
            Cim::ReplyReader reader;
            reader.feed(body.data(), body.size());
            const Cim::Reply message = reader.finish();
            if (!Cim::sameName(message.exportMethod, "ExportIndication")) {
                _response.result(http::status::not_implemented);
                return;
            }
            bool taken = true;
            for (const Cim::Instance& indication : message.instances)
                taken = _onIndication(indication) && taken;
            _response.set(http::field::content_type, "application/xml; charset=\"utf-8\"");
            _response.set("CIMExport", "MethodResponse");
            _response.body() = exportReply(attributeText(message.messageId), taken ? 0 : 1);
        } catch (const std::exception&) {
            _response.result(http::status::bad_request);
            _response.set("CIMError", "request-not-well-formed");
        }
    }

    beast::tcp_stream _stream;
    const Listener::OnIndication& _onIndication;
    beast::flat_buffer _buffer;
    std::optional<http::request_parser<http::string_body>> _parser;
    http::response<http::string_body> _response;
};

} // namespace

struct Listener::Server {
    asio::io_context context{1};
    tcp::acceptor acceptor{context};
    asio::signal_set signals{context, SIGINT, SIGTERM};
    OnIndication onIndication;

    void accept()
    {
        acceptor.async_accept([this](beast::error_code error, tcp::socket socket) {
            if (error) return;
            std::make_shared<Session>(std::move(socket), onIndication)->read();
            accept();
        });
    }
};

Listener::Listener(const std::string& address, std::uint16_t port, OnIndication onIndication)
    : _server(std::make_unique<Server>())
{
    const tcp::endpoint endpoint(asio::ip::make_address(address), port);
    _server->onIndication = std::move(onIndication);
    _server->acceptor.open(endpoint.protocol());
    _server->acceptor.set_option(tcp::acceptor::reuse_address(true));
    _server->acceptor.bind(endpoint);
    _server->acceptor.listen();
    _server->accept();
    _server->signals.async_wait([this](beast::error_code error, int) {
        if (!error) stop();
    });
}

Listener::~Listener() = default;

std::string Listener::url() const
{
    const tcp::endpoint endpoint = _server->acceptor.local_endpoint();
    const std::string address = endpoint.address().to_string();
    return "http://" + (endpoint.address().is_v6() ? "[" + address + "]" : address) + ":" +
           std::to_string(endpoint.port());
}

void Listener::run() { _server->context.run(); }

void Listener::stop() { _server->context.stop(); }

} // namespace KdvSas
