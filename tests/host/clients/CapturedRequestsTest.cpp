// Requests written as two kinds of clients send them, header by header: scripts, and wbemcli.
#include "ProgramHost.h"
#include "hosttest/CimClient.h"
#include "hosttest/ReplyChecker.h"

#include <gtest/gtest.h>

using namespace KDV::Host::Test;

namespace {

std::string scriptHead(const std::string& method, const std::string& object, const std::string& body)
{
    return "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1:5988\r\nUser-Agent: scripts/1.0\r\nAccept-Encoding: gzip, "
           "deflate\r\nAccept: */*\r\nConnection: keep-alive\r\nContent-type: application/xml; charset=\"utf-8\"\r\n"
           "Content-Length: " +
           std::to_string(body.size()) + "\r\nCIMOperation: MethodCall\r\nCIMMethod: " + method +
           "\r\nCIMObject: " + object + "\r\nAuthorization: Basic dTpw\r\n\r\n" + body;
}

std::string wbemcliHead(const std::string& method, const std::string& object, const std::string& body)
{
    return "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1:5988\r\nContent-Type: application/xml; charset=\"utf-8\"\r\n"
           "Connection: Keep-Alive, TE\r\nCIMProtocolVersion: 1.0\r\nCIMOperation: MethodCall\r\nCIMMethod: " +
           method + "\r\nCIMObject: " + object + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body;
}

std::string scriptBody(const std::string& call)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE "
           "ID=\"1001\" "
           "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>" +
           call + "</SIMPLEREQ></MESSAGE></CIM>";
}

std::string wbemcliBody(const std::string& method, const std::string& parameters)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
           "<MESSAGE ID=\"4711\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"" +
           method +
           "\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"></NAMESPACE><NAMESPACE NAME=\"vnr\"></NAMESPACE>"
           "</LOCALNAMESPACEPATH>\n" +
           parameters +
           "<IPARAMVALUE NAME=\"IncludeQualifiers\"><VALUE>FALSE</VALUE></IPARAMVALUE>\n"
           "<IPARAMVALUE NAME=\"IncludeClassOrigin\"><VALUE>TRUE</VALUE></IPARAMVALUE>\n</IMETHODCALL></SIMPLEREQ>\n"
           "</MESSAGE></CIM>";
}

class CapturedRequests : public testing::Test {
protected:
    std::string reply(const std::string& bytes, const std::string& messageId)
    {
        _client.send(bytes);
        const RawReply got = _client.read();
        EXPECT_EQ(got.status, 200u) << got.head;
        EXPECT_EQ(checkReply(got.body), "");
        EXPECT_NE(got.body.find("<MESSAGE ID=\"" + messageId + "\""), std::string::npos);
        return got.body;
    }
    ProgramHost _host;
    RawClient _client{_host.port()}; // one connection for all
};

} // namespace

TEST_F(CapturedRequests, OfScriptsAreAnswered)
{
    const std::string path =
        "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"vnr\"/></LOCALNAMESPACEPATH>";
    const std::string disks = reply(
        scriptHead(
            "EnumerateInstances", "root/vnr",
            scriptBody(
                "<IMETHODCALL NAME=\"EnumerateInstances\">" + path +
                "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"CIM_DiskDrive\"/></IPARAMVALUE></IMETHODCALL>")),
        "1001");
    EXPECT_GT(count(disks, "<INSTANCE CLASSNAME=\"KDV_SASDiskDrive\">"), 1u);

    // With a type beside each key and a property list.
    std::string name = between(disks, "<VALUE.NAMEDINSTANCE>", "<INSTANCE ");
    for (std::size_t at = 0; (at = name.find("VALUETYPE=\"string\"", at)) != name.npos; at += 30)
        name.insert(at + 18, " TYPE=\"string\"");
    const std::string disk =
        reply(scriptHead("GetInstance", "root/vnr",
                         scriptBody("<IMETHODCALL NAME=\"GetInstance\">" + path +
                                    "<IPARAMVALUE NAME=\"InstanceName\">" + name +
                                    "</IPARAMVALUE><IPARAMVALUE NAME=\"LocalOnly\"><VALUE>FALSE</VALUE></IPARAMVALUE>"
                                    "<IPARAMVALUE NAME=\"PropertyList\"><VALUE.ARRAY><VALUE>Name</VALUE></VALUE.ARRAY>"
                                    "</IPARAMVALUE></IMETHODCALL>")),
              "1001");
    EXPECT_EQ(count(disk, "<PROPERTY"), 1u) << disk;

    const std::string nameSpaces = reply(
        scriptHead(
            "EnumerateInstanceNames", "interop",
            scriptBody("<IMETHODCALL NAME=\"EnumerateInstanceNames\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"interop\"/>"
                       "</LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"CIM_Namespace\"/>"
                       "</IPARAMVALUE></IMETHODCALL>")),
        "1001");
    EXPECT_NE(nameSpaces.find(">root/vnr</KEYVALUE>"), std::string::npos);
}

TEST_F(CapturedRequests, OfWbemcliAreAnswered)
{
    const std::string disks = reply(
        wbemcliHead("EnumerateInstances", "root%2Fvnr",
                    wbemcliBody("EnumerateInstances",
                                "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"CIM_DiskDrive\"/></IPARAMVALUE>\n"
                                "<IPARAMVALUE NAME=\"DeepInheritance\"><VALUE>TRUE</VALUE></IPARAMVALUE>\n"
                                "<IPARAMVALUE NAME=\"LocalOnly\"><VALUE>FALSE</VALUE></IPARAMVALUE>\n")),
        "4711");
    EXPECT_NE(disks.find("CLASSORIGIN=\"CIM_LogicalDevice\""), std::string::npos);
    const std::string name = between(disks, "<VALUE.NAMEDINSTANCE>", "<INSTANCE ");
    const std::string found =
        reply(wbemcliHead("Associators", "root%2Fvnr",
                          wbemcliBody("Associators", "<IPARAMVALUE NAME=\"ObjectName\">" + name + "</IPARAMVALUE>\n")),
              "4711");
    EXPECT_GT(count(found, "<VALUE.OBJECTWITHPATH>"), 1u);
}
