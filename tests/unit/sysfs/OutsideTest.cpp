// What goes outside the process: a program that is run with a deadline, the kernel's events, and nodes of devices.
#include "sashba/sysfs/PlugEvents.h"
#include "sashba/sysfs/SgDevice.h"
#include "sashba/sysfs/SmartctlRun.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace KDV {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(ProgramOutput, IsAllThatItWrote)
{
    EXPECT_EQ(outputOf("/bin/sh", {"-c", "printf 'two %s' words; exit 3"}, seconds(60)), "two words");
    EXPECT_EQ(outputOf("/bin/sh", {"-c", "head -c 200000 /dev/zero"}, seconds(60)).size(), 200000U);
}

TEST(ProgramOutput, InheritsNothingFromTheServer)
{
    setenv("KDV_TEST_SECRET", "secret", 1);
    EXPECT_EQ(outputOf("/bin/sh", {"-c", "printf '%s' \"$KDV_TEST_SECRET\""}, seconds(60)), "");
    EXPECT_EQ(outputOf("/bin/sh", {"-c", "read word; printf '%s' \"$word\""}, seconds(60)), "");
}

TEST(ProgramOutput, IsNothingOfAProgramThatIsNotThereOrDoesNotEnd)
{
    EXPECT_EQ(outputOf("/nonexistent/program", {}, seconds(60)), "");
    EXPECT_EQ(outputOf("/bin/sh", {"-c", "echo begun; exec tail -f /dev/null"}, milliseconds(50)), "");
    EXPECT_EQ(outputOf("/bin/sh", {"-c", "exec cat /dev/zero"}, seconds(60)), "") << "it writes without end";
}

// Events as a test writes them: 'p' tells of a plug, any other letter of something else. 'e' makes an event come again
// and again, without end.
class WrittenEvents final : public EventQueue {
public:
    WrittenEvents()
    {
        if (pipe(_ends) != 0) throw std::runtime_error("no pipe");
    }
    ~WrittenEvents() override
    {
        close(_ends[0]);
        close(_ends[1]);
    }
    void write(const std::string& events) const
    {
        ASSERT_EQ(::write(_ends[1], events.data(), events.size()), static_cast<ssize_t>(events.size()));
    }

    int descriptor() const override { return _ends[0]; }
    bool takePlug() override
    {
        bool plug = false;
        pollfd more{_ends[0], POLLIN, 0};
        while (poll(&more, 1, 0) > 0) {
            char letter = 0;
            if (read(_ends[0], &letter, 1) != 1) break;
            plug = plug || letter == 'p' || letter == 'e';
            if (letter != 'e') continue;
            write("e");
            break;
        }
        return plug;
    }

private:
    int _ends[2] = {-1, -1};
};

// Counts calls, and waits for them.
struct Calls {
    std::mutex lock;
    std::condition_variable changed;
    int count = 0;

    void add()
    {
        const std::lock_guard<std::mutex> guard(lock);
        ++count;
        changed.notify_all();
    }
    bool reach(int wanted)
    {
        std::unique_lock<std::mutex> guard(lock);
        return changed.wait_for(guard, seconds(60), [&] { return count >= wanted; });
    }
};

TEST(PlugEvents, CallBackOnceForABurst)
{
    Calls calls;
    auto queue = std::make_unique<WrittenEvents>();
    WrittenEvents& events = *queue;
    events.write("xpxpppxxppp");
    const PlugEvents plugs([&calls] { calls.add(); }, std::move(queue));
    EXPECT_TRUE(plugs.listening());
    EXPECT_TRUE(calls.reach(1));
    events.write("xxxp");
    EXPECT_TRUE(calls.reach(2));
    const std::lock_guard<std::mutex> guard(calls.lock);
    EXPECT_EQ(calls.count, 2) << "and not for every event";
}

TEST(PlugEvents, CallBackInAStormThatDoesNotEnd)
{
    Calls calls;
    auto queue = std::make_unique<WrittenEvents>();
    queue->write("e");
    const PlugEvents plugs([&calls] { calls.add(); }, std::move(queue));
    EXPECT_TRUE(calls.reach(3));
}

TEST(PlugEvents, HaveNothingToListenToWithoutAQueue)
{
    const PlugEvents plugs([] { FAIL() << "there is nothing to tell of"; }, nullptr);
    EXPECT_FALSE(plugs.listening());
}

TEST(PlugEvents, EndAtOnceWhetherTheKernelLetsThemListenOrNot)
{
    const auto calls = std::make_shared<std::atomic<int>>(0);
    for (int turn = 0; turn < 20; ++turn) {
        const bool allowed = openKernelEvents() != nullptr;
        const PlugEvents events([calls] { ++*calls; });
        EXPECT_EQ(events.listening(), allowed);
    }
    EXPECT_EQ(calls.use_count(), 1) << "nobody is left who could call back";
}

TEST(SgOpener, SaysWhyANodeCannotBeOpened)
{
    const auto opener = makeSgOpener();
    AskedDevice device;
    ReadyReply reply;
    EXPECT_EQ(opener->open(device, seconds(1), reply), nullptr);
    EXPECT_TRUE(reply.denied) << "it has no node";
    device.node = "/dev/nonexistent-sg";
    reply = {};
    EXPECT_EQ(opener->open(device, seconds(1), reply), nullptr);
    EXPECT_TRUE(reply.denied);
}

TEST(SgOpener, GetsNothingFromANodeThatIsNoScsiDevice)
{
    const auto opener = makeSgOpener();
    AskedDevice device;
    device.node = "/dev/null";
    ReadyReply reply;
    const auto link = opener->open(device, seconds(1), reply);
    ASSERT_NE(link, nullptr);
    reply = link->testUnitReady();
    EXPECT_EQ(reply.readiness, Readiness::Unknown);
    EXPECT_FALSE(reply.timedOut);
    EXPECT_EQ(link->logPage(0x2F), "");
    EXPECT_EQ(link->enclosurePage(0x02), "");
}

} // namespace
} // namespace KDV
