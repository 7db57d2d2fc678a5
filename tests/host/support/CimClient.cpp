#include "hosttest/CimClient.h"

#include "hosttest/ReplyChecker.h"

#include <stdexcept>

namespace KDV::Host::Test {

namespace {

std::string nameSpacePath(const std::string& nameSpace)
{
    std::string path = "<LOCALNAMESPACEPATH>";
    for (std::size_t at = 0; at <= nameSpace.size();) {
        const std::size_t slash = std::min(nameSpace.find('/', at), nameSpace.size());
        path += "<NAMESPACE NAME=\"" + nameSpace.substr(at, slash - at) + "\"/>";
        at = slash + 1;
    }
    return path + "</LOCALNAMESPACEPATH>";
}

std::string message(const std::string& call)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
           "<MESSAGE ID=\"77\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>" +
           call + "</SIMPLEREQ></MESSAGE></CIM>";
}

} // namespace

std::string parameter(const std::string& name, const std::string& content)
{
    return "<IPARAMVALUE NAME=\"" + name + "\">" + content + "</IPARAMVALUE>";
}

std::string value(const std::string& text) { return "<VALUE>" + text + "</VALUE>"; }

std::string className(const std::string& name) { return "<CLASSNAME NAME=\"" + name + "\"/>"; }

std::string instanceName(const std::string& ofClass, const std::vector<std::pair<std::string, std::string>>& keys)
{
    std::string text = "<INSTANCENAME CLASSNAME=\"" + ofClass + "\">";
    for (const auto& [name, key] : keys) {
        const bool numeric = name[0] == '#';
        text += "<KEYBINDING NAME=\"" + name.substr(numeric) + "\"><KEYVALUE VALUETYPE=\"" +
                (numeric ? "numeric" : "string") + "\">" + key + "</KEYVALUE></KEYBINDING>";
    }
    return text + "</INSTANCENAME>";
}

std::string classParameter(const std::string& name) { return parameter("ClassName", className(name)); }

std::string intrinsic(const std::string& method, const std::string& parameters, const std::string& nameSpace)
{
    return message("<IMETHODCALL NAME=\"" + method + "\">" + nameSpacePath(nameSpace) + parameters + "</IMETHODCALL>");
}

std::string extrinsic(const std::string& method, const std::string& target, const std::string& parameters,
                      const std::string& nameSpace)
{
    const bool isClass = target.compare(0, 10, "<CLASSNAME") == 0;
    const std::string element = isClass ? "LOCALCLASSPATH" : "LOCALINSTANCEPATH";
    return message("<METHODCALL NAME=\"" + method + "\"><" + element + ">" + nameSpacePath(nameSpace) + target + "</" +
                   element + ">" + parameters + "</METHODCALL>");
}

std::string post(const std::string& body, const std::string& headers)
{
    return "POST /cimom HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/xml; charset=\"utf-8\"\r\n" + headers +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

unsigned errorCode(const std::string& reply)
{
    const std::string code = between(reply, "<ERROR CODE=\"", "\"");
    return code.empty() ? 0 : static_cast<unsigned>(std::stoul(code));
}

std::size_t count(const std::string& text, const std::string& part)
{
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++found;
    return found;
}

std::string between(const std::string& text, const std::string& begin, const std::string& end)
{
    const std::size_t from = text.find(begin);
    if (from == text.npos) return {};
    const std::size_t to = text.find(end, from + begin.size());
    return to == text.npos ? std::string() : text.substr(from + begin.size(), to - from - begin.size());
}

std::string askHost(std::uint16_t port, const std::string& body)
{
    RawClient client(port);
    client.send(post(body));
    const RawReply reply = client.read();
    if (reply.status != 200 || reply.truncated) throw std::runtime_error("not answered: " + reply.head);
    const std::string wrong = checkReply(reply.body);
    if (!wrong.empty()) throw std::runtime_error(wrong + " in: " + reply.body.substr(0, 4000));
    return reply.body;
}

} // namespace KDV::Host::Test
