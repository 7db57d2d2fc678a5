// kdv-sas watch: alerts as they come, and nothing left at the server when it ends.
#include "ToolFixture.h"
#include "hosttest/CimClient.h"

#include <algorithm>
#include <csignal>
#include <sstream>

using namespace KDV::Host::Test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

namespace {

class Watch : public ToolFixture {
protected:
    std::unique_ptr<StartedProgram> start(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> all{"watch"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        std::unique_ptr<StartedProgram> program = startTool(machine.url(), all);
        EXPECT_TRUE(program->waitForError("Ctrl-C ends it")) << program->error();
        EXPECT_EQ(subscriptions(), 1u);
        return program;
    }
    std::size_t subscriptions() const { return machine.countNames("CIM_IndicationSubscription", "interop"); }
    void expectNothingLeft() const
    {
        EXPECT_EQ(subscriptions(), 0u);
        EXPECT_EQ(machine.countNames("CIM_ListenerDestinationCIMXML", "interop"), 0u);
        EXPECT_EQ(machine.countNames("CIM_IndicationFilter", "interop"), 1u) << "the one that is always there";
    }
};

} // namespace

TEST_F(Watch, PrintsAlertsAndEndsAfterTheirNumber)
{
    serve();
    const std::unique_ptr<StartedProgram> program = start({"--count", "2"});
    file.box(1)["fanStatus"] = "failed";
    pass();
    EXPECT_TRUE(program->waitForOutput("\n"));
    file.disk(12)["status"] = "predictiveFailure";
    pass();
    EXPECT_EQ(program->waitForEnd(), 0) << program->error();
    const std::string& output = program->output();
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 2) << output;
    EXPECT_THAT(output.substr(0, output.find('\n')),
                AllOf(HasSubstr("major  event 305  Fan of a storage box failed"), HasSubstr("serial GS12-55120093")));
    EXPECT_THAT(output.substr(output.find('\n')),
                AllOf(HasSubstr("warning  event 204  Physical drive predicts its failure at Port 1E Box 2 Bay 5"),
                      HasSubstr("serial IA1CZ90R0104")));
    expectNothingLeft();
}

TEST_F(Watch, EndsAtItsNumberAlthoughMoreAlertsCome)
{
    serve();
    const std::unique_ptr<StartedProgram> program = start({"--count", "1"});
    for (unsigned place : {6u, 7u, 8u})
        file.disk(place)["status"] = "failed";
    pass();
    EXPECT_EQ(program->waitForEnd(), 0) << program->error();
    EXPECT_EQ(std::count(program->output().begin(), program->output().end(), '\n'), 1) << program->output();
    EXPECT_THAT(program->output(), HasSubstr("GR02T55D0071"));
    expectNothingLeft();
}

TEST_F(Watch, SpeaksJsonALineForEachAlert)
{
    serve();
    std::unique_ptr<StartedProgram> program = startTool(machine.url(), {"--json", "watch", "--count", "2"});
    // It does not say when it has subscribed, and need not: whoever comes later hears of what changed before.
    file.box(1)["fanStatus"] = "failed";
    file.disk(12)["status"] = "failed";
    file.write();
    for (int most = 5000; machine.countInLog("indication sent with success") < 2 && most > 0; --most)
        machine.performWork();
    EXPECT_EQ(program->waitForEnd(), 0) << program->error();
    std::istringstream lines(program->output());
    std::vector<std::string> events;
    for (std::string line; std::getline(lines, line);)
        events.push_back(json::parse(line)["properties"]["EventID"]);
    EXPECT_THAT(events, testing::ElementsAre("202", "305"));
    expectNothingLeft();
}

TEST_F(Watch, TakesItsSubscriptionAwayWhenItIsStopped)
{
    serve();
    for (const int number : {SIGINT, SIGTERM}) {
        const std::unique_ptr<StartedProgram> program = start({});
        file.disk(12)["status"] = number == SIGINT ? "predictiveFailure" : "ok";
        pass();
        EXPECT_TRUE(program->waitForOutput("\n"));
        program->signal(number);
        EXPECT_EQ(program->waitForEnd(), 0) << program->error();
        EXPECT_EQ(program->error().find("cannot remove"), std::string::npos) << program->error();
        expectNothingLeft();
    }
}

TEST_F(Watch, SharesTheServerWithOthers)
{
    serve();
    const std::unique_ptr<StartedProgram> first = start({"--count", "1"});
    std::unique_ptr<StartedProgram> second = startTool(machine.url(), {"watch", "--count", "1"});
    ASSERT_TRUE(second->waitForError("Ctrl-C ends it"));
    EXPECT_EQ(subscriptions(), 2u);
    file.disk(12)["status"] = "failed";
    pass();
    EXPECT_EQ(first->waitForEnd(), 0);
    EXPECT_EQ(second->waitForEnd(), 0);
    EXPECT_EQ(first->output(), second->output());
    expectNothingLeft();
}

TEST_F(Watch, LeavesNothingWhenItCannotListen)
{
    serve();
    expectRefusal(tool({"watch", "--listen", "not-an-address"}), "");
    expectRefusal(tool({"watch", "--listen-port", std::to_string(machine.port())}), "in use");
    expectNothingLeft();
}
