// A provider may send from the moment on at which it has a filter or is told to: whoever asked for its alerts must be
// known by then.
#include "ServiceFixture.h"

using namespace KDV::Host;

namespace {

class Enabling : public ServiceFixture {
protected:
    Enabling()
    {
        recorder->whenEnabled = [this] { sent = recorder->deliver("204"); };
    }

    CMPIrc sent = CMPI_RC_ERR_NOT_FOUND;
};

} // namespace

TEST_F(Enabling, LosesNothingThatComesWithANewSubscription)
{
    begin();
    service->add(destination("d"));
    service->add(toCollection("d"));
    ASSERT_EQ(sent, CMPI_RC_OK);
    ASSERT_TRUE(listener("http://d/").waitForAttempts(1));
}

TEST_F(Enabling, LosesNothingThatComesWithAStart)
{
    begin();
    for (const char* name : {"d", "e"}) {
        service->add(destination(name));
        service->add(toCollection(name));
    }
    ASSERT_TRUE(listener("http://d/").waitForAttempts(1));
    sent = CMPI_RC_ERR_NOT_FOUND;
    restart();
    ASSERT_EQ(sent, CMPI_RC_OK);
    ASSERT_TRUE(listener("http://d/").waitForAttempts(2));
    ASSERT_TRUE(listener("http://e/").waitForAttempts(1));
}

TEST_F(Enabling, LosesNothingThatComesWithASubscriptionThatIsSwitchedOn)
{
    begin();
    service->add(destination("d"));
    SubscriptionRecord record = toCollection("d");
    record.enabled = false;
    service->add(record);
    EXPECT_EQ(sent, CMPI_RC_ERR_NOT_FOUND);
    record.enabled = true;
    service->replace(record);
    ASSERT_EQ(sent, CMPI_RC_OK);
    ASSERT_TRUE(listener("http://d/").waitForAttempts(1));
}

TEST_F(Enabling, LosesNothingThatComesWithItsFilter)
{
    recorder->whenEnabled = [] {};
    recorder->whenActivated = [this] { sent = recorder->deliver("204"); };
    begin();
    service->add(destination("d"));
    service->add(toCollection("d"));
    ASSERT_EQ(sent, CMPI_RC_OK);
    ASSERT_TRUE(listener("http://d/").waitForAttempts(1));
    service->add(destination("e"));
    service->add(toCollection("e"));
    sent = CMPI_RC_ERR_NOT_FOUND;
    restart();
    ASSERT_EQ(sent, CMPI_RC_OK);
    ASSERT_TRUE(listener("http://d/").waitForAttempts(2));
    ASSERT_TRUE(listener("http://e/").waitForAttempts(1));
}

TEST_F(Enabling, OfASubscriptionThatIsRefusedLeavesNobodyWaiting)
{
    recorder->whenActivated = [this] { sent = recorder->deliver("204"); };
    recorder->refuse("activate", CMPI_RC_ERR_FAILED);
    begin();
    service->add(destination("d"));
    EXPECT_NE(refusal([&] { service->add(toCollection("d")); }), 0);
    EXPECT_EQ(recorder->deliver("1"), CMPI_RC_ERR_FAILED);
    EXPECT_EQ(service->counters()[destination("d").key].waiting, 0u);
}

TEST_F(Enabling, DoesNotComeBeforeTheSubscriptionIsKept)
{
    begin();
    service->add(destination("d"));
    std::filesystem::remove_all(directory.path()); // so that nothing can be saved
    EXPECT_NE(refusal([&] { service->add(toCollection("d")); }), 0);
    EXPECT_EQ(sent, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_THAT(recorder->calls(), testing::Not(testing::Contains("disable")));
}
