#include "hostxml/RequestError.h"
#include "hostxml/RequestReader.h"
#include "hostxml/XmlTree.h"

#include <string>

#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

RequestFault faultOf(const std::string& document, XmlLimits limits = {})
{
    try {
        XmlTree(limits).read(document);
    } catch (const RequestError& error) {
        return error.fault();
    }
    ADD_FAILURE() << "taken";
    return RequestFault::UnsupportedOperation;
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

} // namespace

TEST(HostileXml, RefusesADocumentTypeAndWithItEntities)
{
    EXPECT_EQ(faultOf("<!DOCTYPE CIM SYSTEM \"http://localhost/cim.dtd\"><CIM/>"), RequestFault::NotValid);
    EXPECT_EQ(faultOf("<!DOCTYPE CIM [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]><CIM>&b;</CIM>"),
              RequestFault::NotValid);
    EXPECT_EQ(faultOf("<CIM>&unknown;</CIM>"), RequestFault::NotWellFormed);
}

TEST(HostileXml, LimitsTheDepth)
{
    XmlTree tree;
    EXPECT_NO_THROW(tree.read(repeated("<A>", 64) + repeated("</A>", 64)));
    EXPECT_EQ(faultOf(repeated("<A>", 65) + repeated("</A>", 65)), RequestFault::NotValid);
    EXPECT_EQ(faultOf(repeated("<A>", 100000)), RequestFault::NotValid);
}

TEST(HostileXml, LimitsElementsAndAttributes)
{
    XmlLimits limits;
    limits.elements = 10;
    limits.attributesPerElement = 2;
    EXPECT_EQ(faultOf("<A>" + repeated("<B/>", 10) + "</A>", limits), RequestFault::NotValid);
    EXPECT_EQ(faultOf("<A a=\"1\" b=\"2\" c=\"3\"/>", limits), RequestFault::NotValid);
    EXPECT_EQ(faultOf("<A a=\"1\" a=\"2\"/>"), RequestFault::NotWellFormed);
    std::string many = "<A";
    for (int i = 0; i < 10000; ++i)
        many += " a" + std::to_string(i) + "=\"\"";
    EXPECT_EQ(faultOf(many + "/>"), RequestFault::NotValid);
}

TEST(HostileXml, RefusesWrongEncodings)
{
    EXPECT_EQ(faultOf("<?xml version=\"1.0\" encoding=\"utf-8\"?><VALUE>\xff\xfe</VALUE>"),
              RequestFault::NotWellFormed);
    EXPECT_EQ(faultOf("<?xml version=\"1.0\" encoding=\"no-such-thing\"?><VALUE/>"), RequestFault::NotWellFormed);
    EXPECT_EQ(faultOf(std::string("<VALUE>\0</VALUE>", 16)), RequestFault::NotWellFormed);
    EXPECT_EQ(faultOf("<VALUE>&#1;</VALUE>"), RequestFault::NotWellFormed);
    EXPECT_EQ(faultOf("<VALUE>&#xD800;</VALUE>"), RequestFault::NotWellFormed);
}

TEST(HostileXml, ReadsOtherEncodingsThatXmlDeclares)
{
    XmlTree tree;
    tree.read("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><VALUE>\xe4</VALUE>");
    EXPECT_EQ(tree.text(tree.root()), "\xC3\xA4");
    std::string utf16 = "\xFF\xFE";
    for (char c : std::string("<VALUE>ab</VALUE>"))
        utf16 += std::string{c, '\0'};
    tree.read(utf16);
    EXPECT_EQ(tree.text(tree.root()), "ab");
}

TEST(HostileXml, TextWhereOnlyElementsBelongIsRefused)
{
    EXPECT_EQ(faultOf("<CIM>text</CIM>"), RequestFault::NotValid);
    EXPECT_EQ(faultOf("<VALUE>a<B/>c</VALUE>"), RequestFault::NotValid);
    XmlTree tree;
    tree.read("<VALUE>a<![CDATA[<b>]]>&lt;<!-- no --><?no?>c</VALUE>");
    EXPECT_EQ(tree.text(tree.root()), "a<b><c");
}

TEST(HostileXml, EveryPrefixOfARequestIsRefusedAndNothingElseHappens)
{
    const std::string whole =
        "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\">"
        "<SIMPLEREQ><IMETHODCALL NAME=\"GetInstance\"><LOCALNAMESPACEPATH><NAMESPACE "
        "NAME=\"root\"/></LOCALNAMESPACEPATH>"
        "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"X\"><KEYBINDING NAME=\"K\"><KEYVALUE>a&amp;"
        "</KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    RequestReader reader;
    EXPECT_EQ(reader.read(whole).method, "GetInstance");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THROW(reader.read(whole.substr(0, length)), RequestError) << length;
}

TEST(HostileXml, ChangedBytesAreReadOrRefused)
{
    const std::string whole =
        "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>"
        "<METHODCALL NAME=\"M\"><LOCALCLASSPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"r\"/></LOCALNAMESPACEPATH>"
        "<CLASSNAME NAME=\"C\"/></LOCALCLASSPATH><PARAMVALUE NAME=\"P\"><VALUE>1</VALUE></PARAMVALUE></METHODCALL>"
        "</SIMPLEREQ></MESSAGE></CIM>";
    RequestReader reader;
    unsigned taken = 0, refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (char c : {'<', '>', '"', '/', '\0', '\xff', 'Z'}) {
            std::string changed = whole;
            changed[at] = c;
            try {
                reader.read(changed);
                ++taken;
            } catch (const RequestError&) {
                ++refused;
            }
        }
    EXPECT_GT(refused, taken);
    EXPECT_GT(taken, 0u) << "a name may be any";
}
