#include "hostserver/CimReply.h"

#include "hostserver/Percent.h"
#include "hostxml/XmlText.h"

namespace KDV::Host {

CimReply::CimReply(ReplyStream& stream, const CimRequest& request) : _stream(stream), _intrinsic(request.intrinsic)
{
    ReplyBuffer& text = out();
    text.append("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE ID=\"");
    appendAttribute(text, request.messageId);
    text.append("\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP>");
    text.append(_intrinsic ? "<IMETHODRESPONSE NAME=\"" : "<METHODRESPONSE NAME=\"");
    appendAttribute(text, request.method);
    text.append("\">\n");
    _content = text.size();
}

void CimReply::openReturn() { out().append("<IRETURNVALUE>\n"); }
void CimReply::closeReturn() { out().append("</IRETURNVALUE>\n"); }

void CimReply::parameter(std::string_view name, std::string_view type, std::string_view text)
{
    out().append("<PARAMVALUE NAME=\"");
    appendAttribute(out(), name);
    out().append("\" PARAMTYPE=\"");
    appendAttribute(out(), type);
    out().append("\"><VALUE>");
    appendText(out(), text);
    out().append("</VALUE></PARAMVALUE>\n");
}

void CimReply::nullParameter(std::string_view name, std::string_view type)
{
    out().append("<PARAMVALUE NAME=\"");
    appendAttribute(out(), name);
    out().append("\" PARAMTYPE=\"");
    appendAttribute(out(), type);
    out().append("\"></PARAMVALUE>\n");
}

void CimReply::fail(int code, std::string_view description)
{
    if (!_stream.started()) {
        out().truncate(_content);
        out().append("<ERROR CODE=\"");
        appendNumber(out(), static_cast<std::uint64_t>(code));
        out().append("\" DESCRIPTION=\"");
        appendAttribute(out(), description);
        return out().append("\"/>\n");
    }
    if (_stream.addTrailer("CIMStatusCode", std::to_string(code))) {
        _stream.addTrailer("CIMStatusCodeDescription", percentEncoded(description));
        return closeReturn();
    }
    _stream.abort();
}

void CimReply::close()
{
    out().append(_intrinsic ? "</IMETHODRESPONSE>" : "</METHODRESPONSE>");
    out().append("</SIMPLERSP></MESSAGE></CIM>\n");
}

} // namespace KDV::Host
