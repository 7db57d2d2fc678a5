#include "indications/LocalStream.h"

#include "TemporaryDirectory.h"
#include "indications/JournalSocket.h"

#include <atomic>
#include <cstring>
#include <fstream>
#include <future>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

class Follower {
public:
    explicit Follower(const std::string& path) : _socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const sockaddr_un address = addressOf(path);
        connected = ::connect(_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~Follower() { ::close(_socket); }
    std::string line() // "end" when the stream is over
    {
        for (;;) {
            const std::size_t at = _buffer.find('\n');
            if (at != std::string::npos) {
                std::string found = _buffer.substr(0, at);
                _buffer.erase(0, at + 1);
                return found;
            }
            char block[4096];
            const ssize_t count = ::recv(_socket, block, sizeof block, 0);
            if (count <= 0) return "end";
            _buffer.append(block, static_cast<std::size_t>(count));
        }
    }
    void say(const std::string& text) { EXPECT_GE(::send(_socket, text.data(), text.size(), MSG_NOSIGNAL), 0); }

    bool connected = false;

private:
    int _socket;
    std::string _buffer;
};

class LocalStreamTest : public testing::Test {
protected:
    std::unique_ptr<LocalStream> make()
    {
        return std::make_unique<LocalStream>(
            _options, [this](bool followed) { _followed.store(followed ? 1 : 2); }, Logger("indications-test"));
    }
    LocalStreamTest() { _options.path = (_directory.path() / "stream").string(); }
    template <class Condition>
    static void waitUntil(Condition condition)
    {
        while (!condition()) // the test's own time limit ends it
            std::this_thread::yield();
    }

    TemporaryDirectory _directory;
    StreamOptions _options;
    std::atomic<int> _followed{0};
};

} // namespace

TEST_F(LocalStreamTest, SendsEveryLineToEveryFollower)
{
    const auto stream = make();
    stream->publish("nobody hears this");
    Follower first(_options.path), second(_options.path);
    waitUntil([&] { return stream->followers() == 2; });
    first.say("whatever");
    stream->publish("one");
    stream->publish("two");
    for (Follower* follower : {&first, &second}) {
        EXPECT_EQ(follower->line(), "one");
        EXPECT_EQ(follower->line(), "two");
    }
}

TEST_F(LocalStreamTest, TellsWhenItIsFollowedAndWhenNoLonger)
{
    const auto stream = make();
    EXPECT_EQ(_followed.load(), 0);
    {
        const Follower follower(_options.path);
        waitUntil([&] { return _followed.load() == 1; });
    }
    waitUntil([&] { return _followed.load() == 2; });
    EXPECT_EQ(stream->followers(), 0u);
}

TEST_F(LocalStreamTest, DropsAFollowerThatDoesNotReadAndNoOther)
{
    _options.bufferedBytes = 4'096;
    const auto stream = make();
    Follower lazy(_options.path), eager(_options.path);
    waitUntil([&] { return stream->followers() == 2; });
    const std::string line(1'000, 'x');
    for (unsigned sent = 0; stream->dropped() == 0; ++sent) {
        ASSERT_LT(sent, 100'000u);
        stream->publish(line);
        ASSERT_EQ(eager.line(), line);
    }
    EXPECT_EQ(stream->dropped(), 1u);
    stream->publish("still here");
    EXPECT_EQ(eager.line(), "still here");
    waitUntil([&] { return stream->followers() == 1; });
    std::string last;
    for (std::string got = lazy.line(); got != "end"; got = lazy.line())
        last = got;
    EXPECT_EQ(last, line);
}

TEST_F(LocalStreamTest, TakesNoMoreFollowersThanItsLimit)
{
    _options.followers = 1;
    const auto stream = make();
    Follower first(_options.path);
    waitUntil([&] { return stream->followers() == 1; });
    Follower second(_options.path);
    EXPECT_EQ(second.line(), "end");
    EXPECT_EQ(stream->followers(), 1u);
}

TEST_F(LocalStreamTest, IsOpenOnlyToThoseWhoMay)
{
    for (const mode_t mode : {0600u, 0660u}) {
        _options.mode = mode;
        const auto stream = make();
        struct stat found {};
        ASSERT_EQ(::stat(_options.path.c_str(), &found), 0);
        EXPECT_EQ(found.st_mode & 0777u, mode);
    }
    EXPECT_NE(::access(_options.path.c_str(), F_OK), 0); // removed at the end
}

TEST_F(LocalStreamTest, ReplacesASocketThatNobodyServesAndNothingElse)
{
    const int left = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = addressOf(_options.path);
    ASSERT_EQ(::bind(left, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(left);
    const auto stream = make();
    EXPECT_TRUE(Follower(_options.path).connected);
    EXPECT_THROW(make(), std::system_error); // somebody serves it now
    _options.path = (_directory.path() / "file").string();
    std::ofstream(_options.path) << "precious";
    EXPECT_THROW(make(), std::system_error);
    EXPECT_EQ(std::filesystem::file_size(_options.path), 8u);
    _options.path = std::string(200, 'x');
    EXPECT_THROW(make(), std::system_error);
}

TEST(JournalSocket, WritesTheNativeProtocol)
{
    EXPECT_EQ(JournalSocket::datagram({{"MESSAGE", "a b=c"}, {"PRIORITY", "3"}}), "MESSAGE=a b=c\nPRIORITY=3\n");
    EXPECT_EQ(JournalSocket::datagram({{"MESSAGE", "two\nlines"}}),
              std::string("MESSAGE\n\x09\0\0\0\0\0\0\0two\nlines\n", 26));
    EXPECT_EQ(JournalSocket::datagram({{"M", std::string(JournalSocket::maxValue + 5, 'x')}}).size(),
              JournalSocket::maxValue + 3);
}

TEST(JournalSocket, SendsDatagramsAndNeverWaits)
{
    TemporaryDirectory directory;
    const std::string path = (directory.path() / "socket").string();
    const JournalSocket journal(path);
    EXPECT_FALSE(journal.send({{"MESSAGE", "nobody there"}}));
    const int server = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = addressOf(path);
    ASSERT_EQ(::bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_TRUE(journal.send({{"MESSAGE", "hello"}}));
    char block[64];
    const ssize_t count = ::recv(server, block, sizeof block, 0);
    EXPECT_EQ(std::string(block, static_cast<std::size_t>(count)), "MESSAGE=hello\n");
    unsigned sent = 0;
    while (journal.send({{"MESSAGE", "more"}})) // full at last: refused, not waited for
        ASSERT_LT(++sent, 1'000'000u);
    ::close(server);
    EXPECT_FALSE(JournalSocket(std::string(300, 'x')).send({{"MESSAGE", "no such name"}}));
}
