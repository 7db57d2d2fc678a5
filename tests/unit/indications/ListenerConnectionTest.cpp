#include "indications/ListenerConnection.h"

#include "DeliveryFakes.h"
#include "listenertest/TestListener.h"

#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace KDV::Host;
using testing::ElementsAre;
using testing::HasSubstr;
using Reply = TestListener::Reply;

namespace {

class ListenerConnectionTest : public testing::Test {
protected:
    std::unique_ptr<DestinationQueue> queueTo(TestListener& listener, ConnectionOptions options = {})
    {
        DestinationQueue::Setup setup;
        setup.name = "test";
        setup.sequenceContext = "context";
        setup.clock = &_clock;
        setup.retry.giveUpAfter = std::chrono::hours(1'000'000);
        return std::make_unique<DestinationQueue>(setup, connectTo(listener.url(), options),
                                                  Logger("indications-test"));
    }
    static void expectAllInOrder(const TestListener& listener, std::size_t count)
    {
        std::vector<std::string> expected;
        for (std::size_t i = 0; i < count; ++i)
            expected.push_back(std::to_string(i));
        EXPECT_EQ(listener.takenValues("SequenceNumber"), expected);
    }

    JumpClock _clock;
    TestListener _listener;
};

} // namespace

TEST_F(ListenerConnectionTest, SendsAnExportMessageWithItsHeaders)
{
    _listener.listen();
    const auto queue = queueTo(_listener);
    queue->put(exportOf("a"));
    ASSERT_TRUE(_listener.waitForTaken(1));
    const TestListener::Message message = _listener.taken()[0];
    EXPECT_THAT(message.head, testing::StartsWith("POST /indications HTTP/1.1\r\n"));
    EXPECT_THAT(message.head, HasSubstr("Content-Type: application/xml; charset=utf-8"));
    EXPECT_THAT(message.head, HasSubstr("CIMExport: MethodRequest"));
    EXPECT_THAT(message.head, HasSubstr("CIMExportMethod: ExportIndication"));
    EXPECT_THAT(message.head, HasSubstr("CIMProtocolVersion: 1.0"));
    EXPECT_THAT(message.head, Not(HasSubstr("Expect")));
    EXPECT_THAT(message.head, Not(HasSubstr("Transfer-Encoding")));
    EXPECT_THAT(message.body, HasSubstr("<SIMPLEEXPREQ><EXPMETHODCALL NAME=\"ExportIndication\">"
                                        "<EXPPARAMVALUE NAME=\"NewIndication\"><INSTANCE CLASSNAME=\"X\"><!--a-->"));
    EXPECT_EQ(message.value("SequenceContext"), "context");
    EXPECT_EQ(message.value("SequenceNumber"), "0");
    EXPECT_EQ(finish(*queue).delivered, 1u);
}

TEST_F(ListenerConnectionTest, KeepsTheConnectionFromMessageToMessage)
{
    _listener.listen();
    const auto queue = queueTo(_listener);
    for (int i = 0; i < 20; ++i)
        queue->put(exportOf("a"));
    EXPECT_EQ(finish(*queue).delivered, 20u);
    EXPECT_EQ(_listener.connections(), 1u);
    expectAllInOrder(_listener, 20);
}

TEST_F(ListenerConnectionTest, LosesNothingWhileTheListenerIsDown)
{
    const auto queue = queueTo(_listener);
    for (int i = 0; i < 5; ++i)
        queue->put(exportOf("a"));
    while (queue->counters().failedAttempts < 3) // each one a refused connection
        std::this_thread::yield();
    EXPECT_TRUE(queue->counters().failing);
    EXPECT_EQ(queue->counters().waiting, 5u);
    _listener.listen();
    ASSERT_TRUE(_listener.waitForTaken(5));
    EXPECT_EQ(finish(*queue).delivered, 5u);
    expectAllInOrder(_listener, 5);
}

TEST_F(ListenerConnectionTest, TriesAgainAfterEveryAnswerThatIsNone)
{
    for (const Reply reply : {Reply::Http500, Reply::CimFailed, Reply::Close, Reply::CloseInBody, Reply::NoXml,
                              Reply::OtherMessageId, Reply::EmptyBody, Reply::HugeBody}) {
        TestListener listener;
        listener.reply(reply, 3);
        listener.listen();
        const auto queue = queueTo(listener);
        for (int i = 0; i < 3; ++i)
            queue->put(exportOf("a"));
        ASSERT_TRUE(listener.waitForTaken(3)) << static_cast<int>(reply);
        const DestinationCounters counters = finish(*queue);
        EXPECT_EQ(counters.delivered, 3u) << static_cast<int>(reply);
        EXPECT_GE(counters.failedAttempts, 1u) << static_cast<int>(reply);
        expectAllInOrder(listener, 3);
    }
}

TEST_F(ListenerConnectionTest, DropsWhatTheListenerNeverTakes)
{
    _listener.reply(Reply::CimNotSupported);
    _listener.listen();
    const auto queue = queueTo(_listener);
    queue->put(exportOf("a"));
    queue->put(exportOf("b"));
    const DestinationCounters counters = finish(*queue);
    EXPECT_EQ(counters.refused, 1u);
    EXPECT_EQ(counters.delivered, 1u);
    EXPECT_THAT(_listener.takenValues("SequenceNumber"), ElementsAre("1"));
}

TEST_F(ListenerConnectionTest, WaitsForAListenerNoLongerThanItsTimeout)
{
    _listener.reply(Reply::Hold);
    _listener.listen();
    ConnectionOptions options;
    options.answerTimeout = std::chrono::milliseconds(100);
    const auto connection = connectTo(_listener.url(), options);
    const ExportAnswer answer = connection->send("<x/>", "0");
    EXPECT_EQ(answer.outcome, ExportOutcome::Later);
    EXPECT_THAT(answer.reason, HasSubstr("timed out"));
    _listener.release();
}

TEST_F(ListenerConnectionTest, CanBeCancelledInAnAttempt)
{
    _listener.reply(Reply::Hold);
    _listener.listen();
    ConnectionOptions options;
    options.answerTimeout = std::chrono::hours(1);
    const auto connection = connectTo(_listener.url(), options);
    auto attempt = std::async(std::launch::async, [&] { return connection->send("<x/>", "0").outcome; });
    ASSERT_TRUE(_listener.waitForReceived(1));
    connection->cancel();
    EXPECT_EQ(attempt.get(), ExportOutcome::Later);
}

TEST_F(ListenerConnectionTest, DelaysNoOtherListenerWhileOneHangs)
{
    ConnectionOptions options;
    options.answerTimeout = std::chrono::hours(1);
    TestListener other;
    _listener.reply(Reply::Hold);
    _listener.listen();
    other.listen();
    const auto hanging = queueTo(_listener, options);
    const auto quick = queueTo(other, options);
    hanging->put(exportOf("first"));
    ASSERT_TRUE(_listener.waitForReceived(1));
    for (int i = 0; i < 10; ++i) {
        hanging->put(exportOf("a"));
        quick->put(exportOf("a"));
    }
    ASSERT_TRUE(other.waitForTaken(10)); // while the first still hangs
    EXPECT_EQ(hanging->counters().delivered, 0u);
    _listener.release();
    EXPECT_EQ(finish(*hanging).delivered, 11u);
    expectAllInOrder(_listener, 11);
    expectAllInOrder(other, 10);
}

TEST_F(ListenerConnectionTest, GoesOnAfterTheListenerClosedAnIdleConnection)
{
    _listener.listen();
    const auto queue = queueTo(_listener);
    queue->put(exportOf("a"));
    ASSERT_TRUE(_listener.waitForTaken(1));
    _listener.reply(Reply::Close);
    queue->put(exportOf("b"));
    queue->put(exportOf("c"));
    ASSERT_TRUE(_listener.waitForTaken(3));
    EXPECT_EQ(finish(*queue).delivered, 3u);
    expectAllInOrder(_listener, 3);
    EXPECT_GE(_listener.connections(), 2u);
}

TEST_F(ListenerConnectionTest, TakesNoPlainListenerForASecureOne)
{
    _listener.listen();
    std::string url = _listener.url();
    url.replace(0, 4, "https");
    ConnectionOptions options;
    options.connectTimeout = std::chrono::milliseconds(100); // the listener waits for a request that never comes
    EXPECT_EQ(connectTo(url, options)->send("<x/>", "0").outcome, ExportOutcome::Later);
    EXPECT_EQ(_listener.taken().size(), 0u);
}

TEST(ExportMessage, EscapesWhatNamesHold)
{
    EXPECT_THAT(exportTail("a<&\"b", "c>\x01", 7),
                testing::AllOf(HasSubstr("<VALUE>a&lt;&amp;"), HasSubstr("c&gt;\xef\xbf\xbd</VALUE>"),
                               HasSubstr("<VALUE>7</VALUE>")));
}

TEST(ExportMessage, UnderstandsAnswers)
{
    const auto outcome = [](const std::string& content, long status = 200) {
        return readExportAnswer(
                   status,
                   "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"5\" PROTOCOLVERSION=\"1.0\">" + content +
                       "</MESSAGE></CIM>",
                   "5")
            .outcome;
    };
    const auto response = [](const std::string& content) {
        return "<SIMPLEEXPRSP><EXPMETHODRESPONSE NAME=\"ExportIndication\">" + content +
               "</EXPMETHODRESPONSE></SIMPLEEXPRSP>";
    };
    EXPECT_EQ(outcome(response("")), ExportOutcome::Delivered);
    EXPECT_EQ(outcome(response("<IRETURNVALUE/>")), ExportOutcome::Delivered);
    EXPECT_EQ(outcome(response(""), 503), ExportOutcome::Later);
    EXPECT_EQ(outcome(response(""), 0), ExportOutcome::Later);
    for (const char* code : {"1", "2", "27", "28"})
        EXPECT_EQ(outcome(response("<ERROR CODE=\"" + std::string(code) + "\"/>")), ExportOutcome::Later) << code;
    for (const char* code : {"3", "4", "7", "x", "-1", "99999999999999999999"})
        EXPECT_EQ(outcome(response("<ERROR CODE=\"" + std::string(code) + "\"/>")), ExportOutcome::Refused) << code;
    EXPECT_EQ(outcome(response("<ERROR/>")), ExportOutcome::Later);
    EXPECT_EQ(outcome("<SIMPLEEXPRSP><EXPMETHODRESPONSE NAME=\"Other\"/></SIMPLEEXPRSP>"), ExportOutcome::Later);
    EXPECT_EQ(outcome("<SIMPLERSP><METHODRESPONSE NAME=\"ExportIndication\"/></SIMPLERSP>"), ExportOutcome::Later);
    EXPECT_EQ(outcome("<!DOCTYPE x>"), ExportOutcome::Later);
    EXPECT_EQ(readExportAnswer(200, "", "5").outcome, ExportOutcome::Later);
    EXPECT_EQ(readExportAnswer(200, std::string("\0\xff", 2), "5").outcome, ExportOutcome::Later);
}
