#include "hostserver/CimHeaders.h"

#include "hostschema/SchemaName.h"
#include "hostserver/Percent.h"
#include "hostxml/RequestError.h"

namespace KDV::Host {

namespace {

constexpr std::string_view extension = "http://www.dmtf.org/cim/mapping/http/v1.0";

std::string_view trimmed(std::string_view text, std::string_view ends)
{
    const std::size_t begin = text.find_first_not_of(ends);
    return begin == text.npos ? std::string_view() : text.substr(begin, text.find_last_not_of(ends) - begin + 1);
}

// The digits of "ns=23" in a Man header, or empty.
std::string extensionPrefix(std::string_view man)
{
    for (std::size_t at = man.find(';'); at != man.npos; at = man.find(';', at + 1)) {
        std::string_view parameter = trimmed(man.substr(at + 1, man.find(';', at + 1) - at - 1), " \t");
        if (!sameName(parameter.substr(0, 2), "ns")) continue;
        parameter = trimmed(parameter.substr(2), " \t=\"");
        if (!parameter.empty() && parameter.find_first_not_of("0123456789") == parameter.npos)
            return std::string(parameter) + "-";
    }
    return {};
}

[[noreturn]] void mismatch(const std::string& header, const std::string& value)
{
    throw RequestError(RequestFault::HeaderMismatch,
                       "the header " + header + " says \"" + value + "\", the message not");
}

// The object of a METHODCALL: "root/vnr:KDV_X.Key=\"value\"". Keys are written in too many ways to compare.
bool namesTarget(std::string_view object, const RequestPath& target)
{
    const std::string start = target.nameSpace + ":" + target.className;
    return sameName(object.substr(0, start.size()), start) &&
           (object.size() == start.size() || object[start.size()] == '.');
}

} // namespace

CimHeaders::CimHeaders(const HttpRequest& request) : _request(request), _extended(request.method == "M-POST")
{
    if (!_extended) return;
    const std::string* man = request.find("Man");
    if (!man || man->find(extension) == man->npos)
        throw HttpError(510, "an M-POST request needs a Man header for " + std::string(extension));
    _prefix = extensionPrefix(*man);
}

const std::string* CimHeaders::find(std::string_view name) const { return _request.find(_prefix + std::string(name)); }

void CimHeaders::check() const
{
    if (find("CIMBatch"))
        throw RequestError(RequestFault::MultipleRequestsUnsupported, "multiple requests are not supported");
    if (find("CIMExport"))
        throw RequestError(RequestFault::UnsupportedOperation, "this server takes no export messages");
    const std::string* operation = find("CIMOperation");
    if (operation && !sameName(*operation, "MethodCall"))
        throw RequestError(RequestFault::UnsupportedOperation, "CIMOperation must be MethodCall");
    const std::string* version = find("CIMProtocolVersion");
    if (version && version->compare(0, 2, "1.") != 0)
        throw RequestError(RequestFault::UnsupportedProtocolVersion, "CIMProtocolVersion must be 1.x");
}

void CimHeaders::check(const CimRequest& message) const
{
    const std::string* method = find("CIMMethod");
    if (method && !sameName(percentDecoded(*method), message.method)) mismatch("CIMMethod", *method);
    const std::string* object = find("CIMObject");
    if (!object) return;
    const std::string decoded = percentDecoded(*object);
    const std::string_view path = trimmed(decoded, "/ ");
    const bool same = message.intrinsic ? sameName(path, message.nameSpace) : namesTarget(path, message.target);
    if (!same) mismatch("CIMObject", *object);
}

void CimHeaders::answer(ReplyHead& head, unsigned status) const
{
    head.status = status;
    if (_extended) {
        const std::string ns = _prefix.empty() ? std::string() : " ; ns=" + _prefix.substr(0, _prefix.size() - 1);
        head.fields.emplace_back("Ext", "");
        head.fields.emplace_back("Cache-Control", "no-cache=\"Ext\"");
        head.fields.emplace_back("Man", "\"" + std::string(extension) + "\"" + ns);
    } else {
        head.fields.emplace_back("Cache-Control", "no-cache");
    }
    if (status == 200) {
        head.fields.emplace_back("Content-Type", "application/xml; charset=\"utf-8\"");
        head.fields.emplace_back(_prefix + "CIMOperation", "MethodResponse");
    }
}

} // namespace KDV::Host
