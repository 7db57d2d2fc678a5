#include "indications/ListenerUrl.h"

#include "hostschema/SchemaName.h"

#include <algorithm>

namespace KDV::Host {

namespace {

bool isHostCharacter(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '-' ||
           c == '_';
}

bool isAddressCharacter(char c) noexcept
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == ':' || c == '.';
}

bool takeScheme(std::string_view& text, bool& secure)
{
    for (const bool tls : {true, false}) {
        const std::string_view scheme = tls ? "https://" : "http://";
        if (sameName(text.substr(0, scheme.size()), scheme)) {
            text.remove_prefix(scheme.size());
            secure = tls;
            return true;
        }
    }
    return false;
}

// "host", "host:port", "[address]:port"
bool readAuthority(std::string_view text, ListenerUrl& url)
{
    std::string_view port;
    if (!text.empty() && text.front() == '[') {
        const std::size_t close = text.find(']');
        if (close == std::string_view::npos) return false;
        url.host = text.substr(1, close - 1);
        if (!std::all_of(url.host.begin(), url.host.end(), isAddressCharacter) ||
            url.host.find(':') == std::string::npos)
            return false;
        port = text.substr(close + 1);
    } else {
        const std::size_t colon = std::min(text.find(':'), text.size());
        url.host = text.substr(0, colon);
        if (!std::all_of(url.host.begin(), url.host.end(), isHostCharacter)) return false;
        port = text.substr(colon);
    }
    if (url.host.empty()) return false;
    if (port.empty()) return true;
    if (port.front() != ':' || port.size() < 2 || port.size() > 6) return false;
    for (char c : port.substr(1)) {
        if (c < '0' || c > '9') return false;
        url.port = url.port * 10 + static_cast<unsigned>(c - '0');
    }
    return url.port >= 1 && url.port <= 65535;
}

} // namespace

bool ListenerUrl::parse(std::string_view text, ListenerUrl& url, std::string& reason)
{
    url = ListenerUrl();
    if (text.size() > maxLength) {
        reason = "an address has at most " + std::to_string(maxLength) + " bytes";
        return false;
    }
    if (!std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 127; })) {
        reason = "an address consists of printable ASCII characters without blanks";
        return false;
    }
    if (!takeScheme(text, url.secure)) {
        reason = "an address begins with http:// or https://";
        return false;
    }
    const std::size_t end = std::min(text.find_first_of("/?#"), text.size());
    if (text.substr(0, end).find('@') != std::string_view::npos) {
        reason = "an address must not hold a user name or password";
        return false;
    }
    if (!readAuthority(text.substr(0, end), url)) {
        reason = "the address has no valid host and port";
        return false;
    }
    if (text.find('#') != std::string_view::npos) {
        reason = "an address must not have a fragment";
        return false;
    }
    url.path = text.substr(end);
    if (url.path.empty() || url.path.front() != '/') url.path.insert(0, 1, '/');
    return true;
}

std::string ListenerUrl::text() const
{
    const bool address = host.find(':') != std::string::npos;
    return (secure ? "https://" : "http://") + (address ? '[' + host + ']' : host) +
           (port ? ':' + std::to_string(port) : std::string()) + path;
}

} // namespace KDV::Host
