// The threads that ask, when devices do not answer in time: how many there are, what becomes of late answers, and that
// their end waits for nobody.
#include "FakeDevices.h"
#include "sashba/sysfs/AskingThreads.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace KDV {
namespace {

using std::chrono::milliseconds;

struct Told {
    std::mutex lock;
    std::vector<std::string> lines;

    std::size_t count()
    {
        const std::lock_guard<std::mutex> guard(lock);
        return lines.size();
    }
    std::size_t of(const std::string& line)
    {
        const std::lock_guard<std::mutex> guard(lock);
        return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
    }
};

class LateDevices : public testing::Test {
protected:
    ~LateDevices() override
    {
        devices->release();
        threads.reset();
        EXPECT_TRUE(devices->reach([this] { return devices->closed == devices->opened; }));
    }

    static std::string keyOf(std::size_t disk) { return "disk " + std::to_string(disk); }

    static std::vector<AskedDevice> disks(std::size_t count)
    {
        std::vector<AskedDevice> asked(count);
        for (std::size_t i = 0; i < count; ++i) {
            asked[i].key = keyOf(i);
            asked[i].path = "devices/0:0:" + std::to_string(i) + ":0";
            asked[i].node = "/dev/sg" + std::to_string(i);
        }
        return asked;
    }

    void start(std::size_t count)
    {
        const auto tell = [to = told](const std::string& text) {
            const std::lock_guard<std::mutex> guard(to->lock);
            to->lines.push_back(text);
        };
        threads = std::make_unique<AskingThreads>(std::make_shared<const SysfsTree>("/nonexistent"),
                                                  std::make_shared<FakeOpener>(devices), settings, tell, tell);
        threads->setDevices(disks(count));
    }

    // Looks again and again, for as long as a test may take; false when it never holds.
    template <class Condition>
    bool become(Condition condition) const
    {
        for (int turn = 0; turn < 6000; ++turn) {
            if (condition(threads->answers())) return true;
            std::unique_lock<std::mutex> guard(devices->lock);
            devices->changed.wait_for(guard, milliseconds(10));
        }
        return false;
    }

    static auto hung(std::size_t count)
    {
        return [count](const DeviceAnswers& answers) {
            return static_cast<std::size_t>(std::count_if(answers.begin(), answers.end(), [](const auto& answer) {
                       return answer.second->hung;
                   })) == count;
        };
    }

    static auto ready(std::size_t count)
    {
        return [count](const DeviceAnswers& answers) {
            return static_cast<std::size_t>(std::count_if(answers.begin(), answers.end(), [](const auto& answer) {
                       return answer.second->readiness == Readiness::Ready;
                   })) == count;
        };
    }

    std::shared_ptr<FakeDevices> devices = std::make_shared<FakeDevices>();
    std::shared_ptr<Told> told = std::make_shared<Told>();
    AskingSettings settings{std::chrono::hours(1), std::chrono::hours(1), milliseconds(5), 8};
    std::unique_ptr<AskingThreads> threads;
};

TEST_F(LateDevices, MakeNoMoreThanABoundedNumberOfThreadsWait)
{
    constexpr std::size_t bound = 8 + 64; // in time, and written off
    devices->hanging = {""};
    start(1255);
    EXPECT_TRUE(devices->reach([this] { return devices->inside == bound; }));
    EXPECT_TRUE(become(hung(64)));
    threads->setDevices(disks(1255)); // as the next refreshes do
    threads->setDevices(disks(1255));
    devices->release();
    EXPECT_TRUE(become(ready(1255)));
    const std::lock_guard<std::mutex> guard(devices->lock);
    EXPECT_EQ(devices->mostInside, bound);
}

TEST_F(LateDevices, AreAskedByFewThreadsWhenTheyAnswer)
{
    settings.deadline = std::chrono::hours(1);
    start(1255);
    EXPECT_TRUE(become(ready(1255)));
    const std::lock_guard<std::mutex> guard(devices->lock);
    EXPECT_LE(devices->mostInside, 8U);
    EXPECT_EQ(devices->opened, 1255U) << "each once";
}

TEST_F(LateDevices, HangAtALaterQuestionTooAndKeepNoOtherWaiting)
{
    devices->hanging = {"/dev/sg1"};
    devices->hangAtPages = true;
    settings.threads = 1;
    start(4);
    EXPECT_TRUE(become([](const DeviceAnswers& answers) { return hung(1)(answers) && ready(3)(answers); }));
    EXPECT_EQ(threads->answers().at(keyOf(1))->readiness, Readiness::Unknown) << "half an answer is none";
}

TEST_F(LateDevices, AreTakenWhenTheyAnswerAfterAll)
{
    devices->hanging = {"/dev/sg0"};
    start(2);
    EXPECT_TRUE(become([](const DeviceAnswers& answers) { return hung(1)(answers) && ready(1)(answers); }));
    devices->release();
    EXPECT_TRUE(become(ready(2)));
    // The other one may be late too, on a busy machine.
    EXPECT_EQ(told->of("/dev/sg0 (0:0:0:0) does not answer in time; its status is unknown"), 1U);
    EXPECT_EQ(told->of("/dev/sg0 (0:0:0:0) answers again"), 1U);
}

TEST_F(LateDevices, AreForgottenWhenTheyWentMeanwhile)
{
    devices->hanging = {"/dev/sg0"};
    start(1);
    EXPECT_TRUE(become(hung(1)));
    threads->setDevices({});
    EXPECT_TRUE(threads->answers().empty());
    devices->release();
    EXPECT_TRUE(devices->reach([this] { return devices->closed == 1; }));
    EXPECT_TRUE(threads->answers().empty());
    threads->setDevices(disks(1));
    EXPECT_TRUE(become(ready(1))) << "it came back and was asked anew";
}

TEST_F(LateDevices, SayNothingAfterTheEnd)
{
    devices->hanging = {"/dev/sg0"};
    start(1);
    EXPECT_TRUE(become(hung(1)));
    const std::size_t before = told->count();
    threads.reset();
    devices->release();
    EXPECT_TRUE(devices->reach([this] { return devices->closed == 1; }));
    while (told.use_count() > 1) // the last thread lets go of what it had
        std::this_thread::yield();
    EXPECT_EQ(told->count(), before);
}

using LateDevicesDeathTest = LateDevices;

TEST_F(LateDevicesDeathTest, DoNotKeepTheProcessFromEnding)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            devices->hanging = {""};
            start(100);
            if (become(hung(64))) std::exit(0);
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace KDV
