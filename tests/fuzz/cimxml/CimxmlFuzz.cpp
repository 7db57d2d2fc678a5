// Any bytes as what a peer sends: through the HTTP reader, its body through the reader of CIM-XML, every text of the
// request written out again as XML, which must then be read back as it was written.
#include "hostserver/HttpRequestReader.h"
#include "hostxml/RequestError.h"
#include "hostxml/RequestReader.h"
#include "hostxml/XmlText.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace KDV::Host;

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

// Written as content and as an attribute, a text must be readable, and written again it must not change any more.
void writeBack(std::string_view text)
{
    ReplyBuffer out;
    out.append("<VALUE A=\"");
    appendAttribute(out, text);
    out.append("\">");
    appendText(out, text);
    out.append("</VALUE>");
    XmlTree tree;
    tree.read(out.view());
    std::string_view attribute;
    require(tree.attribute(tree.root(), "A", attribute));
    require(attribute == tree.text(tree.root()));
    ReplyBuffer again;
    again.append("<VALUE A=\"");
    appendAttribute(again, attribute);
    again.append("\">");
    appendText(again, attribute);
    again.append("</VALUE>");
    require(again.view() == out.view());
}

void readMessage(std::string_view body)
{
    static RequestReader reader; // as a connection keeps it
    try {
        const CimRequest request = reader.read(body);
        writeBack(request.method);
        for (const RequestParameter& parameter : request.parameters)
            writeBack(parameter.value.text);
    } catch (const RequestError& error) {
        require(*error.what() != '\0');
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    writeBack(bytes);
    readMessage(bytes);
    HttpRequestReader http({4096, 65536});
    try {
        std::string_view left = bytes;
        for (std::size_t taken = 1; taken > 0 && !left.empty() && !http.complete();) {
            taken = http.take(left);
            left.remove_prefix(taken);
        }
        if (http.complete()) readMessage(http.release().body);
    } catch (const HttpError& error) {
        require(error.status() >= 400);
    }
    return 0;
}
