#include "hostserver/ReplyStream.h"

#include <array>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

// Two ends of a connection: a stream writes into one, the test reads the other.
class ReplyStreamTest : public testing::Test {
protected:
    ReplyStreamTest()
    {
        std::array<int, 2> ends;
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0)
            throw std::runtime_error("socketpair");
        ours = Socket(ends[0]);
        theirs = Socket(ends[1]);
        limits.chunk = 1000;
    }
    std::string received()
    {
        std::string all;
        std::array<char, 65536> block;
        std::size_t count = 0;
        ours = Socket();
        while (theirs.receive(block.data(), block.size(), Clock::now() + std::chrono::seconds(30), count) ==
               IoResult::Done)
            all.append(block.data(), count);
        return all;
    }
    void write(ReplyStream& stream, std::size_t size, char c)
    {
        stream.buffer().append(std::string(size, c));
        EXPECT_TRUE(stream.elementWritten());
    }
    Socket ours, theirs;
    ReplyBuffer buffer;
    StreamLimits limits;
};

std::string bodyOf(const std::string& reply) { return reply.substr(reply.find("\r\n\r\n") + 4); }

} // namespace

TEST_F(ReplyStreamTest, SendsASmallBodyWholeWithItsLength)
{
    ReplyStream stream(ours, buffer, limits);
    stream.begin(11, true, false);
    write(stream, 999, 'a');
    EXPECT_FALSE(stream.started());
    EXPECT_TRUE(stream.finish());
    const std::string reply = received();
    EXPECT_NE(reply.find("Content-Length: 999\r\n"), std::string::npos);
    EXPECT_EQ(bodyOf(reply), std::string(999, 'a'));
}

TEST_F(ReplyStreamTest, SendsALargeBodyInChunksWithTheLastTwoTogether)
{
    ReplyStream stream(ours, buffer, limits);
    stream.begin(11, true, false);
    write(stream, 1000, 'a');
    EXPECT_TRUE(stream.started());
    write(stream, 10, 'b');
    EXPECT_TRUE(stream.finish());
    EXPECT_EQ(bodyOf(received()), "3e8\r\n" + std::string(1000, 'a') + "\r\na\r\nbbbbbbbbbb\r\n0\r\n\r\n");
}

TEST_F(ReplyStreamTest, EndsAChunkedBodyThatEndsWithAChunk)
{
    ReplyStream stream(ours, buffer, limits);
    stream.begin(11, true, false);
    write(stream, 1000, 'a');
    EXPECT_TRUE(stream.finish());
    EXPECT_EQ(bodyOf(received()), "3e8\r\n" + std::string(1000, 'a') + "\r\n0\r\n\r\n");
}

TEST_F(ReplyStreamTest, SendsTrailersOnlyToWhoTakesThem)
{
    ReplyStream stream(ours, buffer, limits);
    stream.begin(11, true, true);
    write(stream, 1000, 'a');
    EXPECT_TRUE(stream.addTrailer("CIMStatusCode", "6"));
    stream.finish();
    EXPECT_NE(received().find("\r\n0\r\nCIMStatusCode: 6\r\n\r\n"), std::string::npos);

    ReplyStream without(ours, buffer, limits);
    without.begin(11, true, false);
    EXPECT_FALSE(without.addTrailer("CIMStatusCode", "6"));
    without.begin(10, true, true);
    EXPECT_FALSE(without.addTrailer("CIMStatusCode", "6"));
}

TEST_F(ReplyStreamTest, PutsAsideWhatAStalledClientDoesNotTakeWhileAProviderRuns)
{
    limits.stall = std::chrono::milliseconds(5);
    limits.memory = 3000;
    ReplyStream stream(ours, buffer, limits);
    stream.begin(11, true, false);
    stream.providerBegins();
    std::string expected;
    // Nobody reads yet: without the store this would never end.
    for (char c = 'a'; !stream.spilled() || c != 'z'; c = c == 'z' ? 'a' : static_cast<char>(c + 1)) {
        write(stream, 2000, c);
        expected += std::string(2000, c);
    }
    stream.providerEnds();
    bool good = false;
    std::thread sender([&] {
        good = stream.finish();
        ours.cut(true);
    });
    std::string all;
    std::array<char, 65536> block;
    std::size_t count = 0;
    while (theirs.receive(block.data(), block.size(), Clock::now() + std::chrono::seconds(30), count) == IoResult::Done)
        all.append(block.data(), count);
    sender.join();
    EXPECT_TRUE(good);
    std::string body;
    for (std::size_t at = all.find("\r\n\r\n") + 4; all.compare(at, 5, "0\r\n\r\n") != 0; at += 5 + 2000 + 2) {
        ASSERT_EQ(all.compare(at, 5, "7d0\r\n"), 0) << at;
        body.append(all, at + 5, 2000);
    }
    EXPECT_EQ(body, expected);
}

TEST_F(ReplyStreamTest, SeesThatTheClientIsGone)
{
    ReplyStream stream(ours, buffer, limits);
    stream.begin(11, true, false);
    theirs = Socket();
    stream.buffer().append(std::string(2000, 'x'));
    EXPECT_FALSE(stream.elementWritten());
    EXPECT_FALSE(stream.alive());
    EXPECT_FALSE(stream.finish());
}

TEST(SpillStore, ReadsBackWhatWentToMemoryAndToTheFile)
{
    SpillStore store(100);
    std::string expected;
    for (int i = 0; i < 500; ++i) {
        const std::string piece = std::to_string(i) + ",";
        store.append(piece);
        expected += piece;
    }
    EXPECT_EQ(store.size(), expected.size());
    EXPECT_EQ(store.inFile(), expected.size() - 100);
    for (std::size_t offset : {std::size_t{0}, std::size_t{50}, std::size_t{99}, std::size_t{100}, std::size_t{101},
                               expected.size() - 1, expected.size()}) {
        std::string got(expected.size() + 10, '\0');
        got.resize(store.read(offset, got.data(), got.size()));
        EXPECT_EQ(got, expected.substr(offset)) << offset;
    }
}
