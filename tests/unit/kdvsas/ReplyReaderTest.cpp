#include "cim/ReplyReader.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace Cim {
namespace {

std::string message(const std::string& content)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" "
           "PROTOCOLVERSION=\"1.0\"><SIMPLERSP><IMETHODRESPONSE NAME=\"X\">" +
           content + "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

// Fed in pieces of every size: a reader must not depend on where the network cuts.
Reply read(const std::string& text, std::size_t piece = 4096)
{
    ReplyReader reader;
    for (std::size_t at = 0; at < text.size(); at += piece)
        reader.feed(text.data() + at, std::min(piece, text.size() - at));
    return reader.finish();
}

const std::string oneInstance =
    "<IRETURNVALUE><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"X_A\"><KEYBINDING NAME=\"K\"><KEYVALUE "
    "VALUETYPE=\"string\">a &amp; b</KEYVALUE></KEYBINDING></INSTANCENAME><INSTANCE CLASSNAME=\"X_A\">"
    "<PROPERTY NAME=\"K\" TYPE=\"string\"><VALUE>a &amp; b</VALUE></PROPERTY>"
    "<PROPERTY NAME=\"N\" TYPE=\"uint16\"/>"
    "<PROPERTY NAME=\"E\" TYPE=\"string\"><VALUE></VALUE></PROPERTY>"
    "<PROPERTY.ARRAY NAME=\"S\" TYPE=\"uint16\"><VALUE.ARRAY><VALUE>2</VALUE><VALUE>32769</VALUE></VALUE.ARRAY>"
    "</PROPERTY.ARRAY>"
    "<PROPERTY.REFERENCE NAME=\"R\"><VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH>"
    "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"vnr\"/></LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME "
    "CLASSNAME=\"X_B\"><KEYBINDING NAME=\"I\"><KEYVALUE VALUETYPE=\"numeric\">4</KEYVALUE></KEYBINDING></INSTANCENAME>"
    "</INSTANCEPATH></VALUE.REFERENCE></PROPERTY.REFERENCE>"
    "</INSTANCE></VALUE.NAMEDINSTANCE></IRETURNVALUE>";

TEST(ReplyReader, ReadsAnInstanceWhereverTheTextIsCut)
{
    for (const std::size_t piece : {1u, 2u, 7u, 64u, 100000u}) {
        const Reply reply = read(message(oneInstance), piece);
        ASSERT_EQ(reply.instances.size(), 1u);
        const Instance& instance = reply.instances[0];
        EXPECT_EQ(instance.className, "X_A");
        EXPECT_EQ(instance.path.key("k"), "a & b");
        EXPECT_EQ(instance.text("K"), "a & b");
        EXPECT_TRUE(instance.find("N")->isNull);
        EXPECT_FALSE(instance.find("E")->isNull);
        EXPECT_EQ(instance.numbers("S"), (std::vector<unsigned long>{2, 32769}));
        ASSERT_TRUE(instance.find("R")->reference);
        EXPECT_EQ(instance.find("R")->reference->className, "X_B");
        EXPECT_EQ(instance.find("R")->reference->nameSpace, "root/vnr");
        EXPECT_EQ(instance.find("R")->reference->keys[0].value, "4");
    }
}

TEST(ReplyReader, ReadsReferencesInKeys)
{
    const Reply reply = read(message(
        "<IRETURNVALUE><INSTANCENAME CLASSNAME=\"X_L\"><KEYBINDING NAME=\"From\"><VALUE.REFERENCE><INSTANCENAME "
        "CLASSNAME=\"X_A\"><KEYBINDING NAME=\"K\"><KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME></VALUE.REFERENCE>"
        "</KEYBINDING><KEYBINDING NAME=\"To\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"X_B\"/></VALUE.REFERENCE>"
        "</KEYBINDING></INSTANCENAME></IRETURNVALUE>"));
    ASSERT_EQ(reply.paths.size(), 1u);
    ASSERT_EQ(reply.paths[0].keys.size(), 2u);
    EXPECT_EQ(reply.paths[0].keys[0].reference->key("K"), "1");
    EXPECT_EQ(reply.paths[0].keys[1].reference->className, "X_B");
}

TEST(ReplyReader, ReadsAnError)
{
    const Reply reply = read(message("<ERROR CODE=\"5\" DESCRIPTION=\"no such class\"/>"));
    ASSERT_TRUE(reply.error);
    EXPECT_EQ(reply.error->code, 5);
    EXPECT_EQ(reply.error->description, "no such class");
}

TEST(ReplyReader, RefusesADoctype)
{
    EXPECT_THROW(read("<!DOCTYPE CIM [<!ENTITY a \"b\">]><CIM/>"), std::runtime_error);
}

TEST(ReplyReader, RefusesWhatIsNestedTooDeeply)
{
    std::string deep = "<CIM>";
    for (int i = 0; i < 100; ++i)
        deep += "<A>";
    EXPECT_THROW(read(deep), std::runtime_error);
}

TEST(ReplyReader, RefusesADocumentThatIsNoMessage)
{
    for (const char* other :
         {"<html><body>It works!</body></html>", "<CIM/>", "<CIM><MESSAGE ID=\"7\"><SIMPLERSP/></MESSAGE></CIM>",
          "<html><IMETHODRESPONSE NAME=\"X\"/></html>"})
        EXPECT_THROW(read(other), std::runtime_error) << other;
}

TEST(ReplyReader, RefusesAMessageThatEndsEarly)
{
    const std::string whole = message(oneInstance);
    for (const std::size_t length : {std::size_t(0), std::size_t(10), whole.size() / 2, whole.size() - 1})
        EXPECT_THROW(read(whole.substr(0, length)), std::runtime_error) << length;
}

TEST(ReplyReader, SurvivesElementsInThePlacesOfOthers)
{
    for (const char* odd :
         {"<KEYVALUE>x</KEYVALUE>", "<VALUE>x</VALUE>", "<KEYBINDING NAME=\"a\"/>", "<PROPERTY NAME=\"a\"/>",
          "<INSTANCENAME CLASSNAME=\"a\"><KEYVALUE>v</KEYVALUE></INSTANCENAME>",
          "<INSTANCE CLASSNAME=\"a\"><PROPERTY NAME=\"p\"><INSTANCE/></PROPERTY></INSTANCE>"})
        EXPECT_NO_THROW(read(message(odd))) << odd;
}

} // namespace
} // namespace Cim
