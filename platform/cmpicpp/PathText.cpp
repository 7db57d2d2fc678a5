// The text form of a path, a WBEM URI as DSP0207 shows it. Made here rather than by the broker: servers differ in host
// and escapes, and one of them writes the text into a buffer of fixed size.
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/PathKeys.h"

#include <cstdio>

namespace CmpiCpp {

namespace {

void appendQuoted(std::string& out, const std::string& text)
{
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    out += '"';
}

std::string pathText(const CMPIObjectPath* path, unsigned depth);

std::string realText(double number)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

std::string dateTimeText(const CMPIDateTime* dateTime)
{
    if (!dateTime) return {};
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPIString* text = dateTime->ft->getStringFormat(dateTime, &status);
    throwIfFailed(status, "getStringFormat");
    return textOf(text);
}

void appendValue(std::string& out, const PathKey& key, unsigned depth)
{
    const CMPIValue& value = key.data.value;
    switch (key.data.type) {
    case CMPI_string:
    case CMPI_chars:
        appendQuoted(out, key.text());
        break;
    case CMPI_ref:
        appendQuoted(out, depth < maximumReferenceDepth ? pathText(value.ref, depth + 1) : "");
        break;
    case CMPI_dateTime:
        appendQuoted(out, dateTimeText(value.dateTime));
        break;
    case CMPI_boolean:
        out += value.boolean ? "TRUE" : "FALSE";
        break;
    case CMPI_char16:
        out += std::to_string(value.char16);
        break;
    case CMPI_uint8:
        out += std::to_string(value.uint8);
        break;
    case CMPI_uint16:
        out += std::to_string(value.uint16);
        break;
    case CMPI_uint32:
        out += std::to_string(value.uint32);
        break;
    case CMPI_uint64:
        out += std::to_string(value.uint64);
        break;
    case CMPI_sint8:
        out += std::to_string(value.sint8);
        break;
    case CMPI_sint16:
        out += std::to_string(value.sint16);
        break;
    case CMPI_sint32:
        out += std::to_string(value.sint32);
        break;
    case CMPI_sint64:
        out += std::to_string(value.sint64);
        break;
    case CMPI_real32:
        out += realText(static_cast<double>(value.real32));
        break;
    case CMPI_real64:
        out += realText(value.real64);
        break;
    default:
        out += "\"\"";
        break;
    }
}

std::string pathText(const CMPIObjectPath* path, unsigned depth)
{
    std::string out;
    const std::string host = hostOf(path);
    const std::string nameSpace = nameSpaceOf(path);
    if (!host.empty()) out.append("//").append(host);
    if (!host.empty() || !nameSpace.empty()) out.append("/").append(nameSpace).append(":");
    out += classNameOf(path);
    const CMPICount count = keyCountOf(path);
    char separator = '.';
    for (CMPICount i = 0; i < count; ++i) {
        const PathKey key = keyAt(path, i);
        if (key.isNull()) continue;
        out += std::exchange(separator, ',');
        out.append(key.name).append("=");
        appendValue(out, key, depth);
    }
    return out;
}

} // namespace

std::string CmpiObjectPath::str() const { return pathText(_raw, 0); }

} // namespace CmpiCpp
