#include "hostserver/HttpRequestReader.h"

#include "hostschema/SchemaName.h"

#include <optional>

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

namespace KDV::Host {

namespace http = boost::beast::http;

struct HttpRequestReader::Parser {
    std::optional<http::request_parser<http::string_body>> of;
    bool headChecked = false;
};

namespace {

unsigned statusOf(const boost::system::error_code& error)
{
    if (error == http::error::header_limit) return 431;
    if (error == http::error::body_limit) return 413;
    if (error == http::error::bad_version) return 505;
    return 400;
}

std::string_view view(boost::beast::string_view text) { return {text.data(), text.size()}; }

} // namespace

const std::string* HttpRequest::find(std::string_view name) const
{
    for (const auto& field : fields)
        if (sameName(field.first, name)) return &field.second;
    return nullptr;
}

unsigned HttpRequest::count(std::string_view name) const
{
    unsigned found = 0;
    for (const auto& field : fields)
        found += sameName(field.first, name);
    return found;
}

HttpRequestReader::HttpRequestReader(HttpLimits limits) : _limits(limits), _parser(std::make_unique<Parser>()) {}

HttpRequestReader::~HttpRequestReader() = default;

std::size_t HttpRequestReader::take(std::string_view bytes)
{
    if (!_parser->of) {
        _parser->of.emplace();
        _parser->of->eager(true);
        _parser->of->header_limit(static_cast<std::uint32_t>(_limits.head));
        _parser->of->body_limit(_limits.body);
        _parser->headChecked = false;
    }
    auto& parser = *_parser->of;
    boost::system::error_code error;
    const std::size_t taken = parser.put(boost::asio::buffer(bytes.data(), bytes.size()), error);
    if (error && error != http::error::need_more) throw HttpError(statusOf(error), error.message());
    if (parser.is_header_done() && !_parser->headChecked) {
        checkHead();
        _parser->headChecked = true;
    }
    return taken;
}

bool HttpRequestReader::headComplete() const { return _parser->of && _parser->of->is_header_done(); }
bool HttpRequestReader::complete() const { return _parser->of && _parser->of->is_done(); }

std::string HttpRequestReader::method() const { return std::string(view(_parser->of->get().method_string())); }
std::string HttpRequestReader::target() const { return std::string(view(_parser->of->get().target())); }

bool HttpRequestReader::expectsContinue() const
{
    const auto& message = _parser->of->get();
    return message.version() >= 11 && sameName(view(message[http::field::expect]), "100-continue");
}

// What the parser lets through although a body could then be read two ways, or not at all.
void HttpRequestReader::checkHead() const
{
    const auto& message = _parser->of->get();
    if (message.version() != 10 && message.version() != 11)
        throw HttpError(505, "the version must be HTTP/1.0 or HTTP/1.1");
    const auto lengths = message.count(http::field::content_length);
    const auto codings = message.count(http::field::transfer_encoding);
    if (lengths > 1 || codings > 1 || (lengths && codings))
        throw HttpError(400, "the length of the body is given more than once");
    // The parser takes a list of equal lengths for one.
    if (lengths && view(message[http::field::content_length]).find_first_not_of("0123456789") != std::string_view::npos)
        throw HttpError(400, "Content-Length must be one number");
    if (codings && message.version() == 10) throw HttpError(400, "HTTP/1.0 has no transfer codings");
    if (codings && !sameName(view(message[http::field::transfer_encoding]), "chunked"))
        throw HttpError(501, "the only transfer coding taken is chunked");
    if (message.count(http::field::host) > 1 || (message.version() == 11 && message.count(http::field::host) == 0))
        throw HttpError(400, "there must be one Host field");
    if (message.count(http::field::expect) && !expectsContinue())
        throw HttpError(417, "the only expectation met is 100-continue");
    const bool hasBody = view(message.method_string()) == "POST" || view(message.method_string()) == "M-POST";
    if (hasBody && !lengths && !codings) throw HttpError(411, "the length of the body must be given");
}

HttpRequest HttpRequestReader::release()
{
    auto message = _parser->of->release();
    HttpRequest request;
    request.method = view(message.method_string());
    request.target = view(message.target());
    request.version = message.version();
    request.keepAlive = message.keep_alive();
    for (const auto& field : message)
        request.fields.emplace_back(view(field.name_string()), view(field.value()));
    request.body = std::move(message.body());
    _parser->of.reset();
    return request;
}

} // namespace KDV::Host
