#include "indications/ExportMessage.h"

#include "hostxml/TreeCursor.h"
#include "hostxml/XmlText.h"

#include <cstdlib>

namespace KDV::Host {

namespace {

constexpr std::string_view head = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                                  "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"";
constexpr std::string_view call = "\" PROTOCOLVERSION=\"1.0\"><SIMPLEEXPREQ><EXPMETHODCALL NAME=\"ExportIndication\">"
                                  "<EXPPARAMVALUE NAME=\"NewIndication\">";
constexpr std::string_view end = "</INSTANCE></EXPPARAMVALUE></EXPMETHODCALL></SIMPLEEXPREQ></MESSAGE></CIM>\n";

void property(ReplyBuffer& out, std::string_view name, std::string_view type)
{
    out.append("<PROPERTY NAME=\"");
    out.append(name);
    out.append("\" TYPE=\"");
    out.append(type);
    out.append("\"><VALUE>");
}

constexpr std::string_view propertyEnd = "</VALUE></PROPERTY>";

// Codes that tell of the listener's state, not of the message: failed, access denied, limits exceeded, shutting down.
bool meansLater(long code) noexcept { return code == 1 || code == 2 || code == 27 || code == 28; }

ExportAnswer answerOf(const TreeCursor& response)
{
    if (response.required("NAME") != "ExportIndication") response.refuse("answers another method");
    for (TreeCursor at = response.child(); at; at = at.next()) {
        if (!at.is("ERROR")) continue;
        const long code = std::strtol(std::string(at.required("CODE")).c_str(), nullptr, 10);
        std::string reason = "the listener answers CIM error " + std::to_string(code);
        if (const std::string_view text = at.attribute("DESCRIPTION", ""); !text.empty())
            reason += ": " + std::string(text.substr(0, 200));
        return {meansLater(code) ? ExportOutcome::Later : ExportOutcome::Refused, std::move(reason)};
    }
    return {ExportOutcome::Delivered, {}};
}

} // namespace

std::string exportTail(std::string_view filterName, std::string_view sequenceContext, std::uint64_t sequenceNumber)
{
    ReplyBuffer out(512);
    property(out, "IndicationFilterName", "string");
    appendText(out, filterName);
    out.append(propertyEnd);
    property(out, "SequenceContext", "string");
    appendText(out, sequenceContext);
    out.append(propertyEnd);
    property(out, "SequenceNumber", "sint64");
    appendNumber(out, sequenceNumber);
    out.append(propertyEnd);
    return std::string(out.view());
}

std::string exportMessage(std::string_view messageId, std::string_view instance, std::string_view tail)
{
    std::string message;
    message.reserve(head.size() + messageId.size() + call.size() + instance.size() + tail.size() + end.size());
    message.append(head).append(messageId).append(call).append(instance).append(tail).append(end);
    return message;
}

ExportAnswer readExportAnswer(long httpStatus, std::string_view body, std::string_view messageId)
{
    if (httpStatus != 200)
        return {ExportOutcome::Later, "the listener answers HTTP status " + std::to_string(httpStatus)};
    try {
        XmlTree tree({16, 256, 32});
        tree.read(body);
        const TreeCursor message = TreeCursor(tree).expect("CIM").only().expect("MESSAGE");
        if (message.required("ID") != messageId) message.refuse("answers another message");
        return answerOf(message.only().expect("SIMPLEEXPRSP").only().expect("EXPMETHODRESPONSE"));
    } catch (const RequestError& error) {
        return {ExportOutcome::Later, std::string("the answer is none to an indication: ") + error.what()};
    }
}

} // namespace KDV::Host
