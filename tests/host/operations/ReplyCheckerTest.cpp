// The checker that the other tests lean on must itself see mistakes.
#include "hosttest/ReplyChecker.h"

#include <gtest/gtest.h>

using KDV::Host::Test::checkReply;

namespace {

std::string reply(const std::string& content)
{
    return "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP>"
           "<IMETHODRESPONSE NAME=\"X\">" +
           content + "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

} // namespace

TEST(ReplyChecker, AcceptsWhatTheDocumentTypeAllows)
{
    EXPECT_EQ(checkReply(reply("")), "");
    EXPECT_EQ(checkReply(reply("<ERROR CODE=\"1\" DESCRIPTION=\"x\"/>")), "");
    EXPECT_EQ(checkReply(
                  reply("<IRETURNVALUE/><PARAMVALUE NAME=\"a\"/><PARAMVALUE NAME=\"b\"><VALUE>1</VALUE></PARAMVALUE>")),
              "");
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "<CLASSNAME NAME=\"A\"/>\n";
    EXPECT_EQ(checkReply(reply("<IRETURNVALUE>" + many + "</IRETURNVALUE>")), "");
}

TEST(ReplyChecker, SeesEachKindOfMistake)
{
    for (const char* wrong :
         {"<IRETURNVALUE>text</IRETURNVALUE>", "<ERROR/>", "<ERROR CODE=\"1\"/><IRETURNVALUE/>",
          "<IRETURNVALUE/><ERROR CODE=\"1\"/>", "<IRETURNVALUE/><IRETURNVALUE/>", "<UNKNOWN/>",
          "<IRETURNVALUE><CLASSNAME NAME=\"A\"/><INSTANCENAME CLASSNAME=\"A\"/></IRETURNVALUE>",
          "<IRETURNVALUE><CLASSNAME/></IRETURNVALUE>",
          "<IRETURNVALUE><CLASSNAME NAME=\"A\" OTHER=\"B\"/></IRETURNVALUE>",
          "<IRETURNVALUE><VALUE.NAMEDINSTANCE><INSTANCE CLASSNAME=\"A\"/></VALUE.NAMEDINSTANCE></IRETURNVALUE>",
          "<IRETURNVALUE><INSTANCE CLASSNAME=\"A\"><PROPERTY NAME=\"P\" TYPE=\"text\"/></INSTANCE></IRETURNVALUE>",
          "<IRETURNVALUE><INSTANCE CLASSNAME=\"A\"><PROPERTY NAME=\"P\" "
          "TYPE=\"string\"><VALUE/><VALUE/></PROPERTY></INSTANCE></IRETURNVALUE>",
          "<IRETURNVALUE><CLASS NAME=\"A\"><METHOD NAME=\"M\"/><PROPERTY NAME=\"P\" "
          "TYPE=\"string\"/></CLASS></IRETURNVALUE>",
          "<IRETURNVALUE><OBJECTPATH/></IRETURNVALUE>", "<IRETURNVALUE>\x01</IRETURNVALUE>", "<IRETURNVALUE>"})
        EXPECT_NE(checkReply(reply(wrong)), "") << wrong;
}
