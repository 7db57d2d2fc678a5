// A day of random faults on a machine of 1,255 disks, a pass every 30 seconds: the alerts are those that a model of the
// rule says, in its order, and nothing grows.
#include "AlertFixture.h"

#include <functional>
#include <malloc.h>
#include <random>

namespace KDV::Test {
namespace {

constexpr unsigned passesADay = 24 * 60 * 60 / 30;
constexpr unsigned diskCount = 1255;

// The event of a status, written down a second time and another way than in the product; 0: none.
int diskEvent(int status)
{
    static constexpr int events[] = {0, 0, 201, 204, 202, 202, 202, 202, 202, 202, 401, 0, 402};
    return status < 13 ? events[status] : 0;
}

int fanEvent(int status)
{
    static constexpr int events[] = {0, 0, 304, 306, 0, 305};
    return status < 6 ? events[status] : 0;
}

struct Watched {
    std::uint8_t* status;
    int seen; // what the last pass saw; 0 before the first
    std::function<int(int)> event;
};

class RandomFaults : public AlertFixture {
protected:
    RandomFaults()
    {
        for (unsigned i = 0; i < diskCount; ++i)
            watched.push_back(
                {&machine.addDrive(hba, i, i % 3 ? memberUsage : unassignedUsage, 1 + i / 60).status, 0, diskEvent});
        for (unsigned i = 0; i <= diskCount / 60; ++i)
            watched.push_back({&machine.addBox(hba, static_cast<std::uint8_t>(1 + i)).fanStatus, 0, fanEvent});
    }

    Events expectedNow()
    {
        Events expected;
        for (Watched& element : watched) {
            const int now = *element.status;
            const bool changed = element.seen == 0 ? now > 2 : now != element.seen;
            if (changed && element.event(now)) expected.push_back(std::to_string(element.event(now)));
            element.seen = now;
        }
        return expected;
    }

    std::vector<Watched> watched;
};

TEST_P(RandomFaults, AreAlertedExactlyAsTheRuleSaysForADay)
{
    std::mt19937 random(4711);
    watch();
    log.stop();
    std::size_t alerts = 0;
    std::size_t inUseAfterAnHour = 0;
    for (unsigned pass = 0; pass < passesADay; ++pass) {
        for (unsigned fault = random() % 4; fault > 0; --fault)
            *watched[random() % watched.size()].status = static_cast<std::uint8_t>(random() % 14);
        const Events expected = expectedNow();
        ASSERT_EQ(eventsOfPass(), expected) << "pass " << pass;
        alerts += expected.size();
        if (pass == passesADay / 24) {
            caught.nameSpaces.clear();
            inUseAfterAnHour = ::mallinfo2().uordblks;
        }
    }
    EXPECT_GT(alerts, 2000u);
    caught.nameSpaces.clear();
    caught.nameSpaces.shrink_to_fit();
    // The sanitizers' allocators do not report here (0 both times); the plain build does.
    EXPECT_LE(::mallinfo2().uordblks, inUseAfterAnHour + 64 * 1024);
}

INSTANTIATE_TEST_SUITE_P(Brokers, RandomFaults, testing::Values(Host::Profile::Standard), profileTestName);

} // namespace
} // namespace KDV::Test
