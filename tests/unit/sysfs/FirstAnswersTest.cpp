// A disk that was plugged in is known a moment later than it is there. Who asked devices tells when that is.
#include "FakeDevices.h"
#include "sashba/sysfs/AskingThreads.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

using std::chrono::milliseconds;

class FirstAnswers : public testing::Test {
protected:
    ~FirstAnswers() override { devices->release(); }

    static AskedDevice disk(const std::string& name)
    {
        AskedDevice asked;
        asked.key = asked.path = name;
        asked.node = "/dev/" + name;
        return asked;
    }

    void start(milliseconds interval)
    {
        const AskingSettings settings{interval, interval, std::chrono::seconds(60), 8};
        threads = std::make_unique<AskingThreads>(
            std::make_shared<const SysfsTree>("/nonexistent"), std::make_shared<FakeOpener>(devices), settings,
            [](const std::string&) {}, [](const std::string&) {});
        threads->tellOfFirstAnswers([to = devices, count = told] {
            const std::lock_guard<std::mutex> guard(to->lock);
            ++*count;
            to->changed.notify_all();
        });
    }

    int timesTold() const
    {
        const std::lock_guard<std::mutex> guard(devices->lock);
        return *told;
    }

    std::shared_ptr<FakeDevices> devices = std::make_shared<FakeDevices>();
    std::shared_ptr<int> told = std::make_shared<int>(0); // guarded by the lock of the devices
    std::unique_ptr<AskingThreads> threads;
};

TEST_F(FirstAnswers, AreToldOfOnceAllThatCameTogetherHaveThem)
{
    devices->hanging = {"/dev/b"};
    start(std::chrono::hours(1));
    threads->setDevices({disk("a"), disk("b")});
    ASSERT_TRUE(devices->reach([&] { return devices->inside == 1 && devices->closed == 1; }));
    EXPECT_EQ(timesTold(), 0) << "one of them has not answered yet";
    devices->release();
    ASSERT_TRUE(devices->reach([&] { return *told == 1; }));
    threads->setDevices({disk("a"), disk("b"), disk("c")});
    ASSERT_TRUE(devices->reach([&] { return *told == 2; }));
    EXPECT_EQ(threads->answers().size(), 3U);
}

TEST_F(FirstAnswers, AreNotToldOfAgainWhenTheSameDevicesAreAskedAgain)
{
    start(milliseconds(1));
    threads->setDevices({disk("a")});
    ASSERT_TRUE(devices->reach([&] { return devices->closed >= 10; }));
    EXPECT_EQ(timesTold(), 1);
}

} // namespace
} // namespace KDV
