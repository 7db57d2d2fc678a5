// The connection that is made with libcurl. The multi interface is used for one reason: its wait can be ended by
// another thread through a descriptor.
#include "indications/ListenerConnection.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <stdexcept>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

#include <curl/curl.h>

namespace KDV::Host {

ListenerConnection::~ListenerConnection() = default;

namespace {

constexpr std::size_t maxAnswer = 64u << 10;

void initialiseCurl()
{
    static const CURLcode done = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (done != CURLE_OK) throw std::runtime_error(std::string("libcurl: ") + curl_easy_strerror(done));
}

// The handles of libcurl are all the same pointer type, so each kind names its own end.
struct FreeEasy {
    void operator()(CURL* easy) const noexcept { curl_easy_cleanup(easy); }
};
struct FreeMulti {
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
};
struct FreeList {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};

std::size_t collect(char* data, std::size_t size, std::size_t count, void* to)
{
    auto& body = *static_cast<std::string*>(to);
    if (body.size() + size * count > maxAnswer) return 0; // libcurl ends the transfer
    body.append(data, size * count);
    return size * count;
}

class CurlConnection : public ListenerConnection {
public:
    CurlConnection(const std::string& url, const ConnectionOptions& options);
    ~CurlConnection() override;
    ExportAnswer send(const std::string& message, const std::string& messageId) override;
    void cancel() noexcept override;

private:
    template <class Value>
    void set(CURLoption option, Value value);
    CURLcode transfer();

    int _wake;
    std::atomic<bool> _cancelled{false};
    std::string _body;
    char _error[CURL_ERROR_SIZE] = {};
    std::unique_ptr<curl_slist, FreeList> _headers;
    std::unique_ptr<CURLM, FreeMulti> _multi; // after _easy is gone
    std::unique_ptr<CURL, FreeEasy> _easy;
};

template <class Value>
void CurlConnection::set(CURLoption option, Value value)
{
    if (const CURLcode done = curl_easy_setopt(_easy.get(), option, value); done != CURLE_OK)
        throw std::runtime_error(std::string("libcurl: ") + curl_easy_strerror(done));
}

CurlConnection::CurlConnection(const std::string& url, const ConnectionOptions& options)
    : _wake((initialiseCurl(), ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))), _multi(curl_multi_init()),
      _easy(curl_easy_init())
{
    if (_wake < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    if (!_multi || !_easy) throw std::bad_alloc();
    // "Expect" would cost listeners that do not know it a second for every message.
    for (const char* header : {"Content-Type: application/xml; charset=utf-8", "CIMExport: MethodRequest",
                               "CIMExportMethod: ExportIndication", "CIMProtocolVersion: 1.0", "Accept:", "Expect:"}) {
        curl_slist* longer = curl_slist_append(_headers.get(), header);
        if (!longer) throw std::bad_alloc();
        _headers.release();
        _headers.reset(longer);
    }
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_POST, 1L);
    set(CURLOPT_HTTPHEADER, _headers.get());
    set(CURLOPT_WRITEFUNCTION, &collect);
    set(CURLOPT_WRITEDATA, &_body);
    set(CURLOPT_ERRORBUFFER, _error);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_NOPROXY, "*"); // listeners are in the management network
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(options.connectTimeout.count()));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(options.answerTimeout.count()));
    set(CURLOPT_SSL_VERIFYPEER, options.verifyPeer ? 1L : 0L);
    set(CURLOPT_SSL_VERIFYHOST, options.verifyPeer ? 2L : 0L);
    if (!options.caFile.empty()) set(CURLOPT_CAINFO, options.caFile.c_str());
#if LIBCURL_VERSION_NUM >= 0x075500
    set(CURLOPT_PROTOCOLS_STR, "http,https");
#else
    set(CURLOPT_PROTOCOLS, static_cast<long>(CURLPROTO_HTTP | CURLPROTO_HTTPS));
#endif
}

CurlConnection::~CurlConnection()
{
    if (_wake >= 0) ::close(_wake);
}

ExportAnswer CurlConnection::send(const std::string& message, const std::string& messageId)
{
    _body.clear();
    _error[0] = '\0';
    set(CURLOPT_POSTFIELDS, message.c_str());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(message.size()));
    if (curl_multi_add_handle(_multi.get(), _easy.get()) != CURLM_OK)
        return {ExportOutcome::Later, "libcurl takes no transfer"};
    const CURLcode result = transfer();
    long status = 0;
    curl_easy_getinfo(_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_multi_remove_handle(_multi.get(), _easy.get());
    if (result != CURLE_OK) return {ExportOutcome::Later, _error[0] != '\0' ? _error : curl_easy_strerror(result)};
    return readExportAnswer(status, _body, messageId);
}

CURLcode CurlConnection::transfer()
{
    for (int running = 1; running != 0;) {
        if (_cancelled.load()) return CURLE_ABORTED_BY_CALLBACK;
        if (curl_multi_perform(_multi.get(), &running) != CURLM_OK) return CURLE_FAILED_INIT;
        curl_waitfd wake{_wake, CURL_WAIT_POLLIN, 0};
        if (running != 0 && curl_multi_wait(_multi.get(), &wake, 1, 1'000, nullptr) != CURLM_OK)
            return CURLE_FAILED_INIT;
    }
    CURLcode result = CURLE_GOT_NOTHING;
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(_multi.get(), &left))
        if (message->msg == CURLMSG_DONE) result = message->data.result;
    return result;
}

void CurlConnection::cancel() noexcept
{
    _cancelled.store(true);
    const std::uint64_t one = 1;
    // Only an overflow of the counter could fail, and then the descriptor is readable already.
    [[maybe_unused]] const ssize_t written = ::write(_wake, &one, sizeof one);
}

} // namespace

std::unique_ptr<ListenerConnection> connectTo(const std::string& url, const ConnectionOptions& options)
{
    return std::make_unique<CurlConnection>(url, options);
}

} // namespace KDV::Host
