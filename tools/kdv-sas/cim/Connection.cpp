#include "cim/Connection.h"

#include <cctype>
#include <cstring>
#include <utility>

#include <curl/curl.h>

namespace Cim {
namespace {

// What curl hands over while a reply arrives.
struct Arrival {
    ReplyReader reader;
    std::string failure;
    std::string cimError; // the CIMError header of a refused message
};

std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* data)
{
    Arrival& arrival = *static_cast<Arrival*>(data);
    try {
        arrival.reader.feed(bytes, size * count);
        return size * count;
    } catch (const std::exception& error) { // curl is C: the failure travels beside it
        arrival.failure = error.what();
        return 0;
    }
}

std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* data)
{
    const std::string line(bytes, size * count);
    if (sameName(line.substr(0, 9), "CIMError:"))
        static_cast<Arrival*>(data)->cimError = line.substr(9, line.find_last_not_of("\r\n") - 8);
    return size * count;
}

// As RFC 3986 says: everything but unreserved characters.
std::string percentEncoded(const std::string& text)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) || std::strchr("-._~", c)) {
            result += c;
        } else {
            result += '%';
            result += digits[byte >> 4];
            result += digits[byte & 15];
        }
    }
    return result;
}

struct ListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, ListDeleter>;

void append(HeaderList& list, const std::string& line) { list.reset(curl_slist_append(list.release(), line.c_str())); }

} // namespace

struct Connection::Handle {
    CURL* curl = curl_easy_init();
    ~Handle() { curl_easy_cleanup(curl); }
};

Connection::Connection(ServerAddress server) : _server(std::move(server)), _handle(std::make_unique<Handle>())
{
    if (!_handle->curl) throw Unreachable("libcurl does not start");
    CURL* curl = _handle->curl;
    const std::string url = _server.url + "/cimom";
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, _server.connectTimeout);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, _server.timeout);
    if (!_server.user.empty()) {
        curl_easy_setopt(curl, CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
        curl_easy_setopt(curl, CURLOPT_USERNAME, _server.user.c_str());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, _server.password.c_str());
    }
    if (!_server.caFile.empty()) curl_easy_setopt(curl, CURLOPT_CAINFO, _server.caFile.c_str());
    if (_server.insecure) {
        curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 0L);
        curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 0L);
    }
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, onHeader);
}

Connection::~Connection() = default;

Reply Connection::send(const Request& request)
{
    CURL* curl = _handle->curl;
    HeaderList headers;
    append(headers, "Content-Type: application/xml; charset=\"utf-8\"");
    append(headers, "CIMOperation: MethodCall");
    append(headers, "CIMMethod: " + request.method);
    append(headers, "CIMObject: " + percentEncoded(request.object));
    append(headers, "Expect:");
    Arrival arrival;
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, request.body.c_str());
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &arrival);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &arrival);
    const CURLcode code = curl_easy_perform(curl);
    long httpStatus = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &httpStatus);
    if (code == CURLE_OK && httpStatus == 401)
        throw Unreachable(_server.url + " wants a user and a password (--credentials FILE)");
    if (httpStatus != 0 && httpStatus != 200)
        throw Unreachable(_server.url + " answers HTTP " + std::to_string(httpStatus) +
                          (arrival.cimError.empty() ? "" : "," + arrival.cimError));
    if (!arrival.failure.empty())
        throw Unreachable(_server.url + " answers something that is not CIM-XML: " + arrival.failure);
    if (code != CURLE_OK) throw Unreachable(_server.url + ": " + curl_easy_strerror(code));
    Reply reply;
    try {
        reply = arrival.reader.finish();
    } catch (const std::exception& error) {
        throw Unreachable(_server.url + " answers something that is not CIM-XML: " + error.what());
    }
    if (reply.error) throw Refused(reply.error->code, reply.error->description);
    return reply;
}

} // namespace Cim
