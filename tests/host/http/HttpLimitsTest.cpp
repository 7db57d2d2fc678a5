#include "hosttest/CimClient.h"
#include "hosttest/ReplyChecker.h"
#include "hosttest/TestHost.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

const std::string names = intrinsic("EnumerateInstanceNames", classParameter("T_Disk"));

unsigned statusOf(std::uint16_t port, const std::string& bytes)
{
    RawClient client(port);
    client.send(bytes);
    return client.read().status;
}

} // namespace

TEST(HttpLimits, RefusesAHeadThatIsTooLong)
{
    TestHost host;
    const std::string start = "POST /cimom HTTP/1.1\r\nHost: x\r\n";
    EXPECT_EQ(statusOf(host.port(), start + "A: " + std::string(20000, 'a') + "\r\n\r\n"), 431u);
    std::string many = start;
    for (int i = 0; i < 2000; ++i)
        many += "A" + std::to_string(i) + ": b\r\n";
    EXPECT_EQ(statusOf(host.port(), many + "\r\n"), 431u);
    EXPECT_EQ(statusOf(host.port(), "POST /" + std::string(20000, 'a') + " HTTP/1.1\r\n\r\n"), 431u);
    EXPECT_EQ(statusOf(host.port(), post(names)), 200u);
}

TEST(HttpLimits, RefusesABodyThatIsTooLongBeforeReadingIt)
{
    TestSettings settings;
    settings.limits.http.body = 10000;
    TestHost host(settings);
    EXPECT_EQ(statusOf(host.port(), "POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 10001\r\n\r\n"), 413u);
    std::string chunks = "POST / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (int i = 0; i < 11; ++i)
        chunks += "3e8\r\n" + std::string(1000, ' ') + "\r\n";
    EXPECT_EQ(statusOf(host.port(), chunks), 413u);
    EXPECT_EQ(statusOf(host.port(), post(names)), 200u);
}

TEST(HttpLimits, CutsOffRequestsThatDoNotComeToAnEnd)
{
    TestSettings settings;
    settings.limits.head = std::chrono::milliseconds(50);
    settings.limits.request = std::chrono::milliseconds(50);
    settings.limits.idle = std::chrono::milliseconds(50);
    TestHost host(settings);
    EXPECT_EQ(statusOf(host.port(), "POST /cimom HT"), 408u);
    EXPECT_EQ(statusOf(host.port(), "POST /cimom HTTP/1.1\r\nHost: x\r\nContent-Length: 10\r\n\r\nabc"), 408u);
    RawClient idle(host.port());
    EXPECT_TRUE(idle.closedByServer());
}

TEST(HttpLimits, AnswersAClientThatEndsInTheMiddle)
{
    TestHost host;
    RawClient client(host.port());
    client.send("POST /cimom HTTP/1.1\r\nHost: x\r\nContent-Length: 10\r\n\r\nabc");
    client.endSending();
    EXPECT_EQ(client.read().status, 400u);
    RawClient silent(host.port());
    silent.endSending();
    EXPECT_TRUE(silent.closedByServer());
}

TEST(HttpLimits, RefusesConnectionsBeyondTheLimitAndTakesThemAgainLater)
{
    TestSettings settings;
    settings.limits.connections = 3;
    TestHost host(settings);
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(std::make_unique<RawClient>(host.port()));
        clients.back()->send(post(names));
        EXPECT_EQ(clients.back()->read().status, 200u);
    }
    EXPECT_EQ(RawClient(host.port()).read().status, 503u);
    clients.pop_back();
    // The server notices the end of a connection in its own time; until then it goes on refusing.
    unsigned status = 503;
    while (status == 503) {
        RawClient client(host.port());
        try {
            client.send(post(names));
            status = client.read().status;
        } catch (const std::runtime_error&) {
            status = 503; // refused while the request was on its way
        }
    }
    EXPECT_EQ(status, 200u);
}

TEST(HttpLimits, AReaderThatStallsHoldsNeitherTheProviderNorOthers)
{
    TestSettings settings;
    settings.limits.stream.stall = std::chrono::milliseconds(20);
    settings.limits.stream.memory = 100000; // most of the 11 MB go to the file
    TestHost host(settings);
    RawClient stalled(host.port());
    stalled.send(post(intrinsic("EnumerateInstances", classParameter("T_Slow"))));
    EXPECT_NE(stalled.readSome(1), "") << "the reply has begun";

    // Needs the lock that the enumeration holds.
    const std::string reply = askHost(
        host.port(), intrinsic("GetInstance", parameter("InstanceName", instanceName("T_Slow", {{"#Number", "1"}}))));
    EXPECT_EQ(count(reply, "<INSTANCE "), 1u);

    const RawReply late = stalled.read();
    EXPECT_FALSE(late.truncated);
    EXPECT_EQ(checkReply(late.body), "");
    EXPECT_EQ(count(late.body, "<VALUE.NAMEDINSTANCE>"), 5000u);
    stalled.send(post(names));
    EXPECT_EQ(stalled.read().status, 200u);
}

TEST(HttpLimits, GivesUpOnAClientThatTakesNothingAtAll)
{
    TestSettings settings;
    settings.limits.stream.stall = std::chrono::milliseconds(10);
    settings.limits.stream.patience = std::chrono::milliseconds(50);
    TestHost host(settings);
    RawClient stalled(host.port());
    stalled.send(post(intrinsic("EnumerateInstances", classParameter("T_Slow"))));
    stalled.readSome(1);
    EXPECT_EQ(statusOf(host.port(), post(names)), 200u);
    host.host().stop();
    bool whole = true;
    try {
        whole = !stalled.read().truncated;
    } catch (const std::runtime_error&) {
        whole = false;
    }
    EXPECT_FALSE(whole);
}

TEST(HttpLimits, StopsWhileConnectionsAreOpen)
{
    TestHost host;
    RawClient idle(host.port());
    idle.send(post(names));
    EXPECT_EQ(idle.read().status, 200u);
    RawClient halfway(host.port());
    halfway.send("POST /cimom HTTP/1.1\r\nHost");
    host.host().stop();
    EXPECT_TRUE(idle.closedByServer());
    host.host().stop();
}

TEST(HttpLimits, ListensWhereItIsToldAndNowhereElse)
{
    EXPECT_EQ(Endpoint::parse("127.0.0.1:5988").port, "5988");
    EXPECT_EQ(Endpoint::parse("[::1]:0").address, "::1");
    EXPECT_EQ(Endpoint::parse(":80").address, "");
    for (const char* wrong : {"", "localhost", "127.0.0.1:", "127.0.0.1:http", "127.0.0.1:65536", "::1:80", "a:-1"})
        EXPECT_THROW(Endpoint::parse(wrong), std::invalid_argument) << wrong;
    TestHost host;
    EXPECT_THROW(host.host().listen("127.0.0.1:" + std::to_string(host.port())), std::runtime_error) << "taken";
}
