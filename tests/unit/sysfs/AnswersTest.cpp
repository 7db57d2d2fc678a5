// A disk that was plugged in is known a moment later than it is there, and a disk that was well may not be so at the
// next question. Who asks devices tells of both.
#include "FakeDevices.h"
#include "sashba/sysfs/AskingThreads.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

using std::chrono::milliseconds;

class Answers : public testing::Test {
protected:
    ~Answers() override { devices->release(); }

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
        threads->tellOfNews([to = devices, count = told] {
            const std::lock_guard<std::mutex> guard(to->lock);
            ++*count;
            to->changed.notify_all();
        });
    }

    void reply(Readiness readiness) const
    {
        const std::lock_guard<std::mutex> guard(devices->lock);
        devices->reply.readiness = readiness;
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

TEST_F(Answers, AreToldOfOnceAllThatCameTogetherHaveThem)
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

TEST_F(Answers, AreNotToldOfAgainWhenTheSameDevicesAreAskedAgain)
{
    start(milliseconds(1));
    threads->setDevices({disk("a")});
    ASSERT_TRUE(devices->reach([&] { return devices->closed >= 10; }));
    EXPECT_EQ(timesTold(), 1);
}

TEST_F(Answers, AreFollowedByNewsWhenADeviceSaysAnotherThingOfItsState)
{
    start(milliseconds(1));
    threads->setDevices({disk("a")});
    ASSERT_TRUE(devices->reach([&] { return *told == 1; }));
    reply(Readiness::NotReady);
    ASSERT_TRUE(devices->reach([&] { return *told == 2; }));
    EXPECT_EQ(threads->answers().at("a")->readiness, Readiness::NotReady);
    reply(Readiness::Ready);
    ASSERT_TRUE(devices->reach([&] { return *told == 3; }));
}

TEST_F(Answers, AreFollowedByNoNewsWhenADiskFallsAsleepAndWhatItSaidStands)
{
    devices->smartctl = R"({"smartctl": {"exit_status": 8}, "smart_status": {"passed": false}})";
    start(milliseconds(1));
    threads->setDevices({disk("a")});
    ASSERT_TRUE(devices->reach([&] { return *told == 1; }));
    EXPECT_EQ(threads->answers().at("a")->failurePredicted, true);
    reply(Readiness::Asleep);
    std::size_t closed = 0;
    ASSERT_TRUE(devices->reach([&] { return (closed = devices->closed) > 0; }));
    ASSERT_TRUE(devices->reach([&] { return devices->closed >= closed + 10; }));
    EXPECT_EQ(threads->answers().at("a")->readiness, Readiness::Asleep);
    EXPECT_EQ(threads->answers().at("a")->failurePredicted, true);
    EXPECT_EQ(timesTold(), 1);
}

TEST_F(Answers, OfABoxAreAskedForAgainWhenADiskComes)
{
    AskedDevice box = disk("box");
    box.kind = AskedKind::Enclosure;
    start(std::chrono::hours(1));
    threads->setDevices({box, disk("a")});
    ASSERT_TRUE(devices->reach([&] { return devices->closed == 2; }));
    threads->setDevices({box, disk("a")});
    threads->setDevices({box, disk("a"), disk("b")});
    ASSERT_TRUE(devices->reach([&] { return devices->closed == 4; }));
}

TEST_F(Answers, OfABoxThatWasBeingAskedWhenADiskCameAreAskedForAgain)
{
    AskedDevice box = disk("box");
    box.kind = AskedKind::Enclosure;
    devices->hanging = {"/dev/box"};
    start(std::chrono::hours(1));
    threads->setDevices({box});
    ASSERT_TRUE(devices->reach([&] { return devices->inside == 1; }));
    threads->setDevices({box, disk("a")});
    ASSERT_TRUE(devices->reach([&] { return devices->closed == 1; }));
    devices->release();
    ASSERT_TRUE(devices->reach([&] { return devices->closed == 3; }));
}

TEST(StateOfADevice, IsAnotherOneForWhatClientsSeeOfIt)
{
    DeviceAnswer before;
    before.readiness = Readiness::Ready;
    before.enclosure = EnclosureState();
    before.enclosure->slots.resize(2);
    before.slots["bay"] = {"OK", 0};
    before.raidState = "active";
    const auto differs = [&before](auto change) {
        DeviceAnswer after = before;
        change(after);
        return differsInState(before, after) && differsInState(after, before);
    };
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.readiness = Readiness::NoConnect; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.hung = true; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.denied = true; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.failurePredicted = false; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.warned = true; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enduranceUsed = 1; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.raidLevel = "raid1"; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.raidState = "degraded"; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure.reset(); }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->status = 3; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->fans = 5; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->power = 5; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->temperature = 4; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->bays = 12; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->slots[1].failed = true; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->slots[1].failurePredicted = true; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->slots[0].sasAddresses = {1}; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.enclosure->slots.pop_back(); }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.slots["bay"].status = "critical"; }));
    EXPECT_TRUE(differs([](DeviceAnswer& a) { a.slots.clear(); }));
}

TEST(StateOfADevice, IsTheSameWhileOnlyFiguresMove)
{
    DeviceAnswer before;
    before.readiness = Readiness::Ready;
    DeviceAnswer after = before;
    after.readiness = Readiness::Asleep;
    after.powerOnHours = 1234;
    after.raidProgress = 77;
    EXPECT_FALSE(differsInState(before, after));
}

TEST(StateOfADevice, IsNotRememberedOfOneThatHungBeforeItSlept)
{
    DeviceAnswer before;
    before.hung = true;
    const DeviceAnswer after = asleepAfter(before);
    EXPECT_FALSE(after.hung);
    EXPECT_EQ(after.readiness, Readiness::Asleep);
}

} // namespace
} // namespace KDV
