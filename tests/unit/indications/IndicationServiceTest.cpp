#include "ServiceFixture.h"
#include "listenertest/TestListener.h"

#include <algorithm>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include <nlohmann/json.hpp>

using namespace KDV::Host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* about = "KDV_SASIndication as root/vnr:KDV_SASIndication";

std::string call(const std::string& function, const std::string& rest = "") { return function + ' ' + about + rest; }

class IndicationServiceTest : public ServiceFixture {};

} // namespace

TEST_F(IndicationServiceTest, CallsTheProviderInOrderAndMirrored)
{
    begin();
    service->add(filter("f"));
    service->add(filter("g", "SELECT EventID FROM CIM_AlertIndication"));
    service->add(destination("d"));
    service->add(destination("e"));
    EXPECT_THAT(recorder->calls(), IsEmpty());

    SubscriptionRecord first = subscription("f", "d");
    first.creator = "root";
    service->add(first);
    EXPECT_THAT(recorder->calls(),
                ElementsAre(call("authorize", " for root"), call("poll"), call("activate", " first"), "enable"));
    service->add(subscription("f", "e"));
    EXPECT_THAT(recorder->calls(), ElementsAre(call("authorize", " for nobody")));
    service->add(subscription("g", "d"));
    const std::string below = " CIM_AlertIndication as root/vnr:KDV_SASIndication";
    EXPECT_THAT(recorder->calls(),
                ElementsAre("authorize" + below + " for nobody", "poll" + below, "activate" + below));

    service->removeSubscription(subscription("f", "d").key);
    EXPECT_THAT(recorder->calls(), IsEmpty());
    service->removeSubscription(subscription("f", "e").key);
    EXPECT_THAT(recorder->calls(), ElementsAre(call("deactivate")));
    service->removeSubscription(subscription("g", "d").key);
    EXPECT_THAT(recorder->calls(), ElementsAre("deactivate" + below + " last", "disable"));
}

TEST_F(IndicationServiceTest, CallsOlderProvidersInTheirOwnWay)
{
    recorder = std::make_unique<RecordingProvider>(*broker, CMPIVersion100);
    begin();
    service->add(destination("d"));
    service->add(toCollection("d"));
    EXPECT_THAT(recorder->calls(), testing::Contains(call("old poll")));
    recorder->calls();
    end();
    recorder = std::make_unique<RecordingProvider>(*broker, 90);
    begin(); // kept, but not to be activated
    ASSERT_EQ(service->subscriptions().size(), 1u);
    EXPECT_TRUE(service->subscriptions()[0].degraded);
    EXPECT_THAT(recorder->calls(), IsEmpty());
}

TEST_F(IndicationServiceTest, RefusesWhatTheProviderRefuses)
{
    begin();
    service->add(destination("d"));
    for (const char* function : {"authorize", "activate"}) {
        recorder->refuse(function, CMPI_RC_ERR_ACCESS_DENIED);
        std::string text;
        EXPECT_EQ(refusal([&] { service->add(toCollection("d")); }, &text), CMPI_RC_ERR_ACCESS_DENIED) << function;
        EXPECT_THAT(text, HasSubstr("not today"));
        EXPECT_THAT(service->subscriptions(), IsEmpty());
        EXPECT_THAT(recorder->calls(), testing::Not(testing::Contains("enable")));
        EXPECT_EQ(recorder->deliver("1"), CMPI_RC_ERR_FAILED);
    }
    recorder->refuse("", CMPI_RC_OK);
    service->add(toCollection("d"));
    EXPECT_THAT(recorder->calls(), testing::Contains("enable"));
}

TEST_F(IndicationServiceTest, RefusesSubscriptionsWhoseProviderCannotBeLoaded)
{
    Outcome loading;
    IndicationService own(*broker, options, {{"Absent", "root/vnr", "KDV_SASIndication", [&](Outcome& outcome) {
                                                  outcome = loading;
                                                  return static_cast<CMPIIndicationMI*>(nullptr);
                                              }}});
    own.start();
    own.add(destination("d"));
    EXPECT_EQ(refusal([&] { own.add(toCollection("d")); }), CMPI_RC_ERR_NOT_SUPPORTED);
    loading = {CMPI_RC_ERR_FAILED, "no such library"};
    std::string text;
    EXPECT_EQ(refusal([&] { own.add(toCollection("d")); }, &text), CMPI_RC_ERR_FAILED);
    EXPECT_THAT(text, HasSubstr("no such library"));
    EXPECT_THAT(own.subscriptions(), IsEmpty());
}

TEST_F(IndicationServiceTest, RefusesFiltersThatNobodyCanServe)
{
    begin();
    service->add(destination("d"));
    EXPECT_EQ(refusal([&] { service->add(filter("a", "SELECT *")); }), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal([&] { service->add(filter("a", "SELECT * FROM Nothing")); }), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal([&] { service->add(filter("a", "SELECT * FROM CIM_DiskDrive")); }), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal([&] { service->add(filter("a", "SELECT * FROM KDV_SASIndication WHERE Sumary = '1'")); }),
              CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal([&] { service->add(filter("a", "SELECT Sumary FROM KDV_SASIndication")); }),
              CMPI_RC_ERR_INVALID_QUERY);
    FilterRecord language = filter("a");
    language.queryLanguage = "DMTF:FQL";
    EXPECT_EQ(refusal([&] { service->add(language); }), CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED);
    FilterRecord elsewhere = filter("a");
    elsewhere.sourceNamespaces = {"root/nowhere"};
    EXPECT_EQ(refusal([&] { service->add(elsewhere); }), CMPI_RC_ERR_INVALID_PARAMETER);
    FilterRecord interop = filter("a");
    interop.sourceNamespaces.clear();
    EXPECT_EQ(refusal([&] { service->add(interop); }), CMPI_RC_ERR_INVALID_QUERY);

    service->add(filter("sub", "SELECT * FROM CIM_AlertIndication WHERE Summary = 'declared below'"));
    FilterRecord unserved = filter("unserved", "SELECT * FROM CIM_AlertIndication");
    unserved.sourceNamespaces = {"root/interop"};
    service->add(unserved);
    EXPECT_EQ(refusal([&] { service->add(subscription("unserved", "d")); }), CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_THAT(service->subscriptions(), IsEmpty());
}

TEST_F(IndicationServiceTest, DeliversWhatAFilterMatches)
{
    begin();
    service->add(filter("severe", "SELECT * FROM KDV_SASIndication WHERE PerceivedSeverity >= 5"));
    service->add(filter("ids", "SELECT EventID FROM KDV_SASIndication WHERE EventID <> '1'"));
    service->add(destination("d"));
    service->add(destination("e"));
    EXPECT_EQ(recorder->deliver("0", 7), CMPI_RC_ERR_FAILED); // nobody asked yet
    service->add(subscription("severe", "d"));
    service->add(subscription("ids", "e"));
    service->add(toCollection("e"));
    EXPECT_EQ(recorder->deliver("1", 3), CMPI_RC_OK);
    EXPECT_EQ(recorder->deliver("2", 6), CMPI_RC_OK);
    EXPECT_EQ(recorder->deliver("3", 6, "interop", "CIM_AlertIndication"), CMPI_RC_OK); // no filter looks there
    ASSERT_TRUE(listener("http://d/").waitForAttempts(1));
    ASSERT_TRUE(listener("http://e/").waitForAttempts(3));
    end();
    EXPECT_EQ(listener("http://d/").delivered().size(), 1u);
    EXPECT_EQ(listener("http://e/").delivered().size(), 3u);
    const std::string message = listener("http://d/").lastMessage();
    EXPECT_THAT(message, HasSubstr("<INSTANCE CLASSNAME=\"KDV_SASIndication\">"));
    EXPECT_THAT(message, HasSubstr("<PROPERTY NAME=\"EventID\" TYPE=\"string\"><VALUE>2</VALUE>"));
    EXPECT_THAT(message, HasSubstr("<PROPERTY NAME=\"PerceivedSeverity\" TYPE=\"uint16\"><VALUE>6</VALUE>"));
    EXPECT_THAT(message, HasSubstr("<PROPERTY NAME=\"IndicationFilterName\" TYPE=\"string\"><VALUE>severe</VALUE>"));
    EXPECT_THAT(message, HasSubstr("<PROPERTY NAME=\"SequenceNumber\" TYPE=\"sint64\"><VALUE>0</VALUE>"));
    EXPECT_THAT(message, HasSubstr("<VALUE>testhost;1800000000000000;d</VALUE>"));
    EXPECT_THAT(message, testing::Not(HasSubstr("the provider's own")));
}

TEST_F(IndicationServiceTest, WritesOnlySelectedProperties)
{
    begin();
    service->add(filter("ids", "SELECT EventID FROM KDV_SASIndication"));
    service->add(destination("d"));
    service->add(subscription("ids", "d"));
    recorder->deliver("4");
    ASSERT_TRUE(listener("http://d/").waitForAttempts(1));
    const std::string message = listener("http://d/").lastMessage();
    EXPECT_THAT(message, HasSubstr("<VALUE>4</VALUE>"));
    EXPECT_THAT(message, testing::Not(HasSubstr("NAME=\"Summary\"")));
    EXPECT_THAT(message, HasSubstr("NAME=\"SequenceNumber\""));
}

TEST_F(IndicationServiceTest, KeepsSubscriptionsAliveOverARestart)
{
    begin();
    service->add(filter("f"));
    service->add(destination("d"));
    service->add(subscription("f", "d"));
    service->add(toCollection("d"));
    recorder->deliver("1");
    ASSERT_TRUE(listener("http://d/").waitForAttempts(2));
    end();
    EXPECT_EQ(recorder->calls().back(), "disable");
    listeners.clear();
    ++time;
    begin();
    EXPECT_EQ(service->subscriptions().size(), 2u);
    EXPECT_THAT(recorder->calls(), testing::Contains("enable"));
    EXPECT_EQ(recorder->deliver("2"), CMPI_RC_OK);
    ASSERT_TRUE(listener("http://d/").waitForAttempts(2));
    EXPECT_THAT(listener("http://d/").lastMessage(), HasSubstr("testhost;1800000000000001;d")); // numbers begin anew
}

TEST_F(IndicationServiceTest, ShowsWhichSubscriptionsAProviderWouldNotHaveAfterARestart)
{
    begin();
    service->add(destination("d"));
    service->add(toCollection("d"));
    end();
    recorder->refuse("authorize", CMPI_RC_ERR_ACCESS_DENIED);
    begin();
    ASSERT_EQ(service->subscriptions().size(), 1u);
    EXPECT_TRUE(service->subscriptions()[0].degraded);
    EXPECT_EQ(refusal([&] { service->replace(service->subscriptions()[0].record); }), CMPI_RC_ERR_ACCESS_DENIED);
    recorder->refuse("", CMPI_RC_OK);
    service->replace(service->subscriptions()[0].record);
    EXPECT_FALSE(service->subscriptions()[0].degraded);
    EXPECT_EQ(recorder->deliver("1"), CMPI_RC_OK);
}

TEST_F(IndicationServiceTest, StopsAndStartsADisabledSubscription)
{
    begin();
    service->add(destination("d"));
    service->add(toCollection("d"));
    recorder->calls();
    SubscriptionRecord record = service->subscriptions()[0].record;
    record.enabled = false;
    time += 5;
    service->replace(record);
    EXPECT_THAT(recorder->calls(), ElementsAre(call("deactivate", " last"), "disable"));
    EXPECT_EQ(recorder->deliver("1"), CMPI_RC_ERR_FAILED);
    EXPECT_EQ(service->subscriptions()[0].record.stateChanged, time.load());
    restart();
    EXPECT_THAT(recorder->calls(), IsEmpty());
    record.enabled = true;
    service->replace(record);
    EXPECT_EQ(recorder->calls().back(), "enable");
    EXPECT_EQ(recorder->deliver("2"), CMPI_RC_OK);
    EXPECT_TRUE(listener("http://d/").waitForAttempts(1));
}

TEST_F(IndicationServiceTest, DoesWhatTheSubscriptionWantsWhenDeliveryFails)
{
    options.retry.attempts = 1;
    for (const auto policy : {FatalErrorPolicy::Ignore, FatalErrorPolicy::Disable, FatalErrorPolicy::Remove}) {
        TemporaryDirectory own;
        options.stateDirectory = own.path();
        restart();
        recorder->calls();
        DestinationRecord transient = destination("d");
        transient.persistence = Persistence::Transient;
        service->add(transient);
        SubscriptionRecord record = toCollection("d");
        record.policy = policy;
        service->add(record);
        listener("http://d/").answer(ExportOutcome::Later);
        recorder->deliver("1");
        if (policy == FatalErrorPolicy::Ignore) {
            waitUntil([&] { return service->counters().begin()->second.expired == 1; });
            EXPECT_TRUE(service->subscriptions()[0].record.enabled);
            EXPECT_EQ(service->destinations().size(), 1u);
        } else if (policy == FatalErrorPolicy::Disable) {
            waitUntil([&] { return !service->subscriptions()[0].record.enabled; });
            EXPECT_EQ(service->destinations().size(), 1u);
            EXPECT_EQ(recorder->deliver("2"), CMPI_RC_ERR_FAILED);
        } else {
            waitUntil([&] { return service->destinations().empty(); });
            EXPECT_THAT(service->subscriptions(), IsEmpty());
            EXPECT_EQ(recorder->calls().back(), "disable");
        }
        end();
        listeners.clear();
    }
}

TEST_F(IndicationServiceTest, EndsSubscriptionsWhoseTimeIsOver)
{
    begin();
    service->add(destination("d"));
    SubscriptionRecord record = toCollection("d");
    record.durationSeconds = 10;
    service->add(record);
    time += 9'999'999;
    EXPECT_EQ(service->subscriptions().size(), 1u);
    EXPECT_EQ(recorder->deliver("1"), CMPI_RC_OK);
    time += 1;
    recorder->deliver("2");
    EXPECT_THAT(service->subscriptions(), IsEmpty());
    EXPECT_EQ(recorder->deliver("3"), CMPI_RC_ERR_FAILED);
    service->removeDestination(destination("d").key);
    record.durationSeconds = UINT64_MAX;
    service->add(destination("d"));
    service->add(record);
    EXPECT_EQ(service->subscriptions().size(), 1u);
    EXPECT_EQ(recorder->deliver("4"), CMPI_RC_OK);
}

TEST_F(IndicationServiceTest, LetsNoListenerDelayAProviderOrAnotherListener)
{
    begin();
    for (const char* name : {"hangs", "quick"}) {
        service->add(destination(name));
        service->add(toCollection(name));
    }
    listener("http://hangs/").closeGate();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(recorder->deliver(std::to_string(i)), CMPI_RC_OK);
    EXPECT_TRUE(listener("http://quick/").waitForAttempts(20));
    // The hanging one can be unsubscribed and deleted in the middle of it.
    SubscriptionRecord hanging = toCollection("hangs");
    service->removeSubscription(hanging.key);
    service->removeDestination(destination("hangs").key);
    EXPECT_EQ(service->counters().size(), 1u);
    EXPECT_EQ(listener("http://quick/").attempts().size(), 20u);
}

TEST_F(IndicationServiceTest, FlushesWhatIsQueuedWhenItStops)
{
    options.farewell = std::chrono::milliseconds(patience);
    begin();
    service->add(destination("d"));
    service->add(toCollection("d"));
    listener("http://d/").answer(ExportOutcome::Later, 3);
    for (int i = 0; i < 50; ++i)
        recorder->deliver(std::to_string(i));
    end();
    EXPECT_EQ(listener("http://d/").delivered().size(), 50u);
}

TEST_F(IndicationServiceTest, WritesEveryIndicationToJournalAndStream)
{
    const std::string journal = (directory.path() / "journal").string();
    const int server = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    journal.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    options.journal = journal;
    options.stream = StreamOptions{(directory.path() / "stream").string()};
    begin();
    EXPECT_EQ(recorder->deliver("0"), CMPI_RC_ERR_FAILED);

    // Following is enough to make the provider send.
    const int follower = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un stream{};
    stream.sun_family = AF_UNIX;
    options.stream->path.copy(stream.sun_path, sizeof stream.sun_path - 1);
    ASSERT_EQ(::connect(follower, reinterpret_cast<const sockaddr*>(&stream), sizeof stream), 0);
    waitUntil([&] { return recorder->deliver("301", 5) == CMPI_RC_OK; });

    char block[4096];
    ssize_t count = ::recv(server, block, sizeof block, 0);
    const std::string entry(block, static_cast<std::size_t>(count));
    EXPECT_THAT(entry, HasSubstr("MESSAGE=something happened\n"));
    EXPECT_THAT(entry, HasSubstr("PRIORITY=3\n"));
    EXPECT_THAT(entry, HasSubstr("SYSLOG_IDENTIFIER=kdv-cimhost\n"));
    EXPECT_THAT(entry, HasSubstr("KDV_EVENT_ID=301\n"));
    EXPECT_THAT(entry, HasSubstr("KDV_ELEMENT=root/vnr:KDV_SASDiskDrive.DeviceID=\"7\"\n"));
    EXPECT_THAT(entry, HasSubstr("KDV_CLASS=KDV_SASIndication\n"));
    std::string line;
    while (line.find('\n') == std::string::npos && (count = ::recv(follower, block, sizeof block, 0)) > 0)
        line.append(block, static_cast<std::size_t>(count));
    const auto json = nlohmann::json::parse(line.substr(0, line.find('\n')));
    EXPECT_EQ(json["class"], "KDV_SASIndication");
    EXPECT_EQ(json["namespace"], "root/vnr");
    EXPECT_EQ(json["time"], "20270115080000.000000+000");
    EXPECT_EQ(json["properties"]["EventID"], "301");
    EXPECT_EQ(json["properties"]["PerceivedSeverity"], 5);
    EXPECT_FALSE(json["properties"].contains("OtherSeverity"));
    ::close(follower);
    waitUntil([&] { return recorder->deliver("0") == CMPI_RC_ERR_FAILED; });
    ::close(server);
}

TEST_F(IndicationServiceTest, CanFollowFromItsStartOn)
{
    options.followAlways = true;
    begin();
    EXPECT_EQ(recorder->calls().back(), "enable");
    EXPECT_EQ(recorder->deliver("1"), CMPI_RC_OK);
    end();
    EXPECT_EQ(recorder->calls().back(), "disable");
}

TEST_F(IndicationServiceTest, ReachesARealListenerThroughOutageErrorsAndSlowness)
{
    TestListener real;
    real.reply(TestListener::Reply::Http500);
    real.reply(TestListener::Reply::CimFailed, 2);
    real.reply(TestListener::Reply::CloseInBody);
    real.reply(TestListener::Reply::Hold);
    options.retry.giveUpAfter = std::chrono::hours(1'000'000);
    options.connect = nullptr; // libcurl
    begin();
    DestinationRecord record = destination("real");
    record.url = real.url();
    service->add(record);
    service->add(toCollection("real"));
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(recorder->deliver(std::to_string(i)), CMPI_RC_OK);
    waitUntil([&] { return service->counters().begin()->second.failedAttempts >= 2; }); // refused connections
    real.listen();
    ASSERT_TRUE(real.waitForReceived(5));
    real.release();
    ASSERT_TRUE(real.waitForTaken(10));
    std::vector<std::string> expected;
    for (int i = 0; i < 10; ++i)
        expected.push_back(std::to_string(i));
    // The answer that broke off may have been to a message that arrived.
    std::vector<std::string> ids = real.takenValues("EventID");
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    EXPECT_EQ(ids, expected);
}

TEST_F(IndicationServiceTest, TakesChangesWhileProvidersDeliver)
{
    begin();
    for (const char* name : {"a", "b"})
        service->add(destination(name));
    service->add(toCollection("b"));
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&] {
            while (!done.load())
                EXPECT_EQ(recorder->deliver("1"), CMPI_RC_OK);
        });
    for (int i = 0; i < 50; ++i) {
        service->add(toCollection("a"));
        service->counters();
        service->removeSubscription(toCollection("a").key);
        service->removeDestination(destination("a").key);
        service->add(destination("a"));
        recorder->calls();
    }
    done = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(service->subscriptions().size(), 1u);
    EXPECT_TRUE(broker->statistics().lifetimesClean());
}
