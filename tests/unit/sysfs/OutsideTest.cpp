// What goes outside the process: a program that is run with a deadline, and the kernel's event socket.
#include "sashba/sysfs/PlugEvents.h"
#include "sashba/sysfs/SgDevice.h"
#include "sashba/sysfs/SmartctlRun.h"

#include <atomic>
#include <memory>

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

TEST(PlugEvents, EndAtOnceWhetherTheKernelLetsThemListenOrNot)
{
    const auto calls = std::make_shared<std::atomic<int>>(0);
    for (int turn = 0; turn < 20; ++turn)
        const PlugEvents events([calls] { ++*calls; });
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
