// Takes the bytes of a connection and makes requests of them, with the HTTP parser of Boost.Beast behind it (which only
// its source includes, since it is slow to compile). One reader belongs to one connection; no lock. What HTTP forbids
// or a limit cuts is HttpError, after which the reader is of no more use.
#pragma once

#include "hostserver/HttpRequest.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace KDV::Host {

struct HttpLimits {
    std::size_t head = 16u << 10;
    std::size_t body = 8u << 20;
};

class HttpRequestReader {
public:
    explicit HttpRequestReader(HttpLimits limits);
    ~HttpRequestReader();
    HttpRequestReader(const HttpRequestReader&) = delete;
    HttpRequestReader& operator=(const HttpRequestReader&) = delete;

    // How many of the bytes were taken. Those that were not are offered again with more behind them; once the request
    // is complete they belong to the next one.
    std::size_t take(std::string_view bytes);
    bool headComplete() const;
    bool complete() const;
    // Of a complete head.
    std::string method() const;
    std::string target() const;
    // The client waits for "100 Continue" before it sends the body. Only meaningful between head and body.
    bool expectsContinue() const;
    // The complete request; the reader is then ready for the next one.
    HttpRequest release();

private:
    struct Parser;
    void checkHead() const;

    HttpLimits _limits;
    std::unique_ptr<Parser> _parser;
};

} // namespace KDV::Host
