#include "hostserver/UntypedPath.h"

#include "hostserver/CimError.h"

namespace KDV::Host {

namespace {

[[noreturn]] void refuse(std::string_view text)
{
    throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "\"" + std::string(text) + "\" is no object path");
}

// Takes a quoted text with its escapes from the front of `rest`.
std::string takeQuoted(std::string_view& rest, std::string_view whole)
{
    std::string value;
    std::size_t at = 1;
    for (; at < rest.size() && rest[at] != '"'; ++at) {
        if (rest[at] == '\\' && ++at == rest.size()) break;
        value += rest[at];
    }
    if (at >= rest.size()) refuse(whole);
    rest.remove_prefix(at + 1);
    return value;
}

} // namespace

RequestPath readUntypedPath(std::string_view text)
{
    RequestPath path;
    path.isInstance = true;
    std::string_view rest = text;
    // Hosts may have points too; that of the keys is the last one before the first value.
    const std::size_t point = rest.rfind('.', rest.find('='));
    std::string_view head = rest.substr(0, point);
    rest = point == rest.npos ? std::string_view() : rest.substr(point + 1);
    if (head.substr(0, 2) == "//") {
        const std::size_t slash = head.find('/', 2);
        if (slash == head.npos) refuse(text);
        path.host = head.substr(2, slash - 2);
        head.remove_prefix(slash + 1);
    }
    const std::size_t colon = head.find(':');
    if (colon != head.npos) {
        path.nameSpace = head.substr(0, colon);
        head.remove_prefix(colon + 1);
    }
    path.className = head;
    if (path.className.empty() || rest.empty()) refuse(text);
    while (!rest.empty()) {
        RequestKey key;
        const std::size_t equals = rest.find('=');
        if (equals == 0 || equals == rest.npos || equals + 1 == rest.size()) refuse(text);
        key.name = rest.substr(0, equals);
        rest.remove_prefix(equals + 1);
        if (rest[0] == '"') {
            key.text = takeQuoted(rest, text);
        } else {
            key.text = rest.substr(0, rest.find(','));
            key.kind = sameName(key.text, "TRUE") || sameName(key.text, "FALSE") ? KeyKind::Boolean : KeyKind::Numeric;
            rest.remove_prefix(key.text.size());
        }
        path.keys.push_back(std::move(key));
        if (!rest.empty() && rest[0] != ',') refuse(text);
        rest.remove_prefix(rest.empty() ? 0 : 1);
    }
    return path;
}

} // namespace KDV::Host
