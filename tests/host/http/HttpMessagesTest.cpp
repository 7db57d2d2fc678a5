#include "hosttest/CimClient.h"
#include "hosttest/ReplyChecker.h"
#include "hosttest/TestHost.h"

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

class HttpMessages : public testing::Test {
protected:
    RawReply reply(const std::string& bytes)
    {
        RawClient client(host.port());
        client.send(bytes);
        return client.read();
    }
    // The status of what must end the connection too.
    unsigned statusAndClose(const std::string& bytes)
    {
        RawClient client(host.port());
        client.send(bytes);
        const RawReply got = client.read();
        EXPECT_EQ(got.field("Connection"), "close") << bytes.substr(0, 100);
        EXPECT_TRUE(client.closedByServer()) << bytes.substr(0, 100);
        return got.status;
    }
    TestHost host;
    const std::string names = intrinsic("EnumerateInstanceNames", classParameter("T_Disk"));
};

void expectNames(const RawReply& reply)
{
    EXPECT_EQ(reply.status, 200u);
    EXPECT_EQ(checkReply(reply.body), "");
    EXPECT_EQ(count(reply.body, "<INSTANCENAME "), 8u);
}

} // namespace

TEST_F(HttpMessages, AnswersWithTheHeadersThatCimClientsWant)
{
    const RawReply got = reply(post(names, "CIMOperation: MethodCall\r\nCIMMethod: EnumerateInstanceNames\r\n"
                                           "CIMObject: root%2Ftest\r\nCIMProtocolVersion: 1.0\r\n"));
    expectNames(got);
    EXPECT_EQ(got.field("Content-Type"), "application/xml; charset=\"utf-8\"");
    EXPECT_EQ(got.field("CIMOperation"), "MethodResponse");
    EXPECT_EQ(got.field("Content-Length"), std::to_string(got.body.size()));
    EXPECT_NE(got.body.find("<IMETHODRESPONSE NAME=\"EnumerateInstanceNames\">"), std::string::npos);
    EXPECT_NE(got.body.find("<MESSAGE ID=\"77\""), std::string::npos);
}

TEST_F(HttpMessages, ServesManyRequestsOnOneConnection)
{
    RawClient client(host.port());
    for (int i = 0; i < 20; ++i) {
        client.send(post(names, "Connection: Keep-Alive, TE\r\n"));
        expectNames(client.read());
    }
}

TEST_F(HttpMessages, AnswersPipelinedRequestsInTheirOrder)
{
    RawClient client(host.port());
    const std::string other = intrinsic("EnumerateClassNames", "");
    client.send(post(names) + post(other) + "\r\n" + post(names) + post(other));
    for (int i = 0; i < 2; ++i) {
        expectNames(client.read());
        EXPECT_NE(client.read().body.find("EnumerateClassNames"), std::string::npos);
    }
}

TEST_F(HttpMessages, TakesARequestInSingleBytes)
{
    RawClient client(host.port());
    for (char c : post(names))
        client.send(std::string(1, c));
    expectNames(client.read());
}

TEST_F(HttpMessages, TakesABodyInChunks)
{
    std::string chunked = "POST /cimom HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (std::size_t at = 0; at < names.size(); at += 16) {
        const std::string part = names.substr(at, 16);
        char size[8];
        std::snprintf(size, sizeof size, "%zx", part.size());
        chunked += size + std::string(";a=b\r\n") + part + "\r\n";
    }
    RawClient client(host.port());
    client.send(chunked + "0\r\nTrailer: x\r\n\r\n" + post(names));
    expectNames(client.read());
    expectNames(client.read());
}

TEST_F(HttpMessages, SaysContinueToWhoWaitsForIt)
{
    RawClient client(host.port());
    client.send("POST /cimom HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: " +
                std::to_string(names.size()) + "\r\n\r\n");
    EXPECT_EQ(client.read().status, 100u);
    client.send(names);
    expectNames(client.read());
    EXPECT_EQ(statusAndClose("POST /other HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: 5\r\n\r\n"),
              404u)
        << "a body that is not wanted is not asked for";
    EXPECT_EQ(statusAndClose("POST / HTTP/1.1\r\nHost: x\r\nExpect: a miracle\r\nContent-Length: 5\r\n\r\n"), 417u);
}

TEST_F(HttpMessages, ClosesWhenTheClientWantsIt)
{
    RawClient client(host.port());
    client.send(post(names, "Connection: close\r\n"));
    const RawReply got = client.read();
    expectNames(got);
    EXPECT_EQ(got.field("Connection"), "close");
    EXPECT_TRUE(client.closedByServer());
}

TEST_F(HttpMessages, AnswersOldHttpWithoutChunksAndCloses)
{
    RawClient client(host.port());
    const std::string body = intrinsic("EnumerateInstances", classParameter("T_Slow"));
    client.send("POST /cimom HTTP/1.0\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    const RawReply got = client.read();
    EXPECT_FALSE(got.chunked);
    EXPECT_EQ(checkReply(got.body), "");
    EXPECT_EQ(count(got.body, "<INSTANCE "), 5000u);
    RawClient kept(host.port());
    kept.send("POST / HTTP/1.0\r\nConnection: keep-alive\r\nContent-Length: " + std::to_string(names.size()) +
              "\r\n\r\n" + names);
    EXPECT_EQ(kept.read().field("Connection"), "keep-alive");
}

TEST_F(HttpMessages, SendsLargeRepliesInChunksAndKeepsTheConnection)
{
    RawClient client(host.port());
    for (int i = 0; i < 2; ++i) {
        client.send(post(intrinsic("EnumerateInstances", classParameter("T_Slow"))));
        const RawReply got = client.read();
        EXPECT_TRUE(got.chunked);
        EXPECT_FALSE(got.truncated);
        EXPECT_TRUE(got.trailers.empty());
        EXPECT_EQ(checkReply(got.body), "");
        EXPECT_EQ(count(got.body, "<VALUE.NAMEDINSTANCE>"), 5000u);
    }
}

TEST_F(HttpMessages, RefusesBodiesWhoseLengthIsNotClear)
{
    const std::string head = "POST /cimom HTTP/1.1\r\nHost: x\r\n";
    EXPECT_EQ(statusAndClose(head + "\r\n"), 411u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: 5\r\nContent-Length: 6\r\n\r\nhello!"), 400u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: 5\r\nContent-Length: 5\r\n\r\nhello"), 400u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: 5, 5\r\n\r\nhello"), 400u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose(head + "Transfer-Encoding: chunked\r\nContent-Length: 5\r\n\r\n0\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: -5\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: +5\r\n\r\nhello"), 400u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: five\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose(head + "Content-Length: 99999999999999999999999\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose(head + "Transfer-Encoding: gzip\r\n\r\n"), 501u);
    EXPECT_EQ(statusAndClose(head + "Transfer-Encoding: chunked\r\n\r\nzz\r\n"), 400u);
    EXPECT_EQ(statusAndClose("POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"), 400u);
}

TEST_F(HttpMessages, RefusesWhatIsNoHttp)
{
    EXPECT_EQ(statusAndClose("hello\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose("POST /cimom HTTP/3.0\r\nHost: x\r\n\r\n"), 505u);
    EXPECT_EQ(statusAndClose("POST /cimom HTTP/1.1\r\nHost x\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose("POST /cimom HTTP/1.1\r\nContent-Length: 0\r\n\r\n"), 400u) << "no Host";
    EXPECT_EQ(statusAndClose("POST /cimom HTTP/1.1\r\nHost: x\r\nHost: y\r\nContent-Length: 0\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose("POST /" + std::string(1, '\0') + "cimom HTTP/1.1\r\nHost: x\r\n\r\n"), 400u);
    EXPECT_EQ(statusAndClose("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03\r\n\r\n"), 400u) << "TLS on a plain port";
}

TEST_F(HttpMessages, KnowsItsMethodsAndPlaces)
{
    for (const char* method : {"GET", "HEAD", "PUT", "DELETE", "OPTIONS", "TRACE", "PATCH"}) {
        RawClient client(host.port());
        client.send(std::string(method) + " /cimom HTTP/1.1\r\nHost: x\r\n\r\n");
        const RawReply got = client.read();
        EXPECT_EQ(got.status, 405u) << method;
        EXPECT_EQ(got.field("Allow"), "POST, M-POST") << method;
    }
    EXPECT_EQ(statusAndClose("BREW /cimom HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n"), 501u);
    EXPECT_EQ(statusAndClose("post /cimom HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n"), 501u);
    EXPECT_EQ(statusAndClose("POST /etc/passwd HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n"), 404u);
    for (const char* target : {"/", "/cimom", "/cimom?x=1", "http://localhost:5988/cimom", "http://localhost"}) {
        const std::string bytes = post(names);
        expectNames(reply("POST " + std::string(target) + bytes.substr(bytes.find(" HTTP"))));
    }
}

TEST_F(HttpMessages, TakesExtendedPostsWithTheirPrefix)
{
    const std::string man = "Man: \"http://www.dmtf.org/cim/mapping/http/v1.0\" ; ns=73\r\n";
    const RawReply got = reply("M-" + post(names, man + "73-CIMOperation: MethodCall\r\n73-CIMMethod: "
                                                        "EnumerateInstanceNames\r\n73-CIMObject: root/test\r\n"));
    expectNames(got);
    EXPECT_EQ(got.field("73-CIMOperation"), "MethodResponse");
    EXPECT_EQ(got.fields.count("ext"), 1u);
    EXPECT_NE(got.field("Man").find("ns=73"), std::string::npos);
    EXPECT_EQ(reply("M-" + post(names)).status, 510u);
    EXPECT_EQ(reply("M-" + post(names, man + "73-CIMMethod: GetClass\r\n")).status, 400u);
    EXPECT_EQ(reply("M-" + post(names, man + "CIMMethod: GetClass\r\n")).status, 200u) << "not under the prefix";
}

TEST_F(HttpMessages, NamesEveryContradictionBetweenHeadersAndMessage)
{
    const auto error = [&](const std::string& header, unsigned status) {
        const RawReply got = reply(post(names, header));
        EXPECT_EQ(got.status, status) << header;
        EXPECT_EQ(got.body, "") << header;
        return got.field("CIMError");
    };
    EXPECT_EQ(error("CIMMethod: GetInstance\r\n", 400), "header-mismatch");
    EXPECT_EQ(error("CIMObject: root/other\r\n", 400), "header-mismatch");
    EXPECT_EQ(error("CIMObject: root%2Ftest%2Fmore\r\n", 400), "header-mismatch");
    EXPECT_EQ(error("CIMOperation: Other\r\n", 501), "unsupported-operation");
    EXPECT_EQ(error("CIMProtocolVersion: 2.0\r\n", 501), "unsupported-protocol-version");
    EXPECT_EQ(error("CIMBatch:\r\n", 501), "multiple-requests-unsupported");
    EXPECT_EQ(error("CIMExport: MethodRequest\r\n", 501), "unsupported-operation");
}

TEST_F(HttpMessages, ComparesTheTargetOfAMethodWithItsHeader)
{
    const std::string call = extrinsic("Blink", instanceName("T_Box", {{"#Number", "1"}}),
                                       "<PARAMVALUE NAME=\"Times\" PARAMTYPE=\"uint32\"><VALUE>1</VALUE></PARAMVALUE>");
    EXPECT_EQ(reply(post(call, "CIMObject: root%2Ftest%3AT_Box.Number%3D1\r\nCIMMethod: Blink\r\n")).status, 200u);
    EXPECT_EQ(reply(post(call, "CIMObject: root/test:T_Box\r\n")).status, 200u);
    EXPECT_EQ(reply(post(call, "CIMObject: root/test:T_Boxes\r\n")).status, 400u);
    EXPECT_EQ(reply(post(call, "CIMObject: root/other:T_Box\r\n")).status, 400u);
}

TEST_F(HttpMessages, NamesTheFaultOfABrokenMessageAndServesTheNext)
{
    RawClient client(host.port());
    const std::pair<std::string, std::string> broken[] = {
        {"<CIM", "request-not-well-formed"},
        {"", "request-not-well-formed"},
        {"<!DOCTYPE CIM><CIM/>", "request-not-valid"},
        {"<HTML/>", "request-not-loosely-valid"},
        {"<CIM CIMVERSION=\"1.0\" DTDVERSION=\"2.0\"/>", "unsupported-cim-version"}};
    for (const auto& [body, error] : broken) {
        client.send(post(body));
        const RawReply got = client.read();
        EXPECT_EQ(got.field("CIMError"), error);
        EXPECT_EQ(got.status, error.compare(0, 11, "unsupported") == 0 ? 501u : 400u);
        EXPECT_NE(got.field("PGErrorDetail"), "");
    }
    client.send(post("{}", "Content-Type: application/json\r\n"));
    EXPECT_EQ(client.read().field("CIMError"), "request-not-well-formed") << "the first type counts";
    client.send(post(names));
    expectNames(client.read());
}

TEST_F(HttpMessages, ReadsAnyXmlTypeAndRefusesOthers)
{
    const auto typed = [&](const std::string& type) {
        return reply("POST / HTTP/1.1\r\nHost: x\r\n" + type + "Content-Length: " + std::to_string(names.size()) +
                     "\r\n\r\n" + names)
            .status;
    };
    EXPECT_EQ(typed("Content-Type: text/xml; charset=utf-8\r\n"), 200u);
    EXPECT_EQ(typed(""), 200u);
    EXPECT_EQ(typed("Content-Type: application/json\r\n"), 415u);
}
