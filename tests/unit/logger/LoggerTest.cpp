#include "logger/Logger.h"

#include "logger/LogSettings.h"

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Takes the lines of the process for the life of a test.
class LoggerTest : public testing::Test {
protected:
    LoggerTest()
    {
        setLogSink([this](LogLevel level, std::string_view source, std::string_view text) {
            lines.push_back((level == LogLevel::info ? "I " : "E ") + std::string(source) + "|" + std::string(text));
        });
        setLogLevel(LogLevel::info);
    }
    ~LoggerTest() override
    {
        setLogSink({});
        setLogLevel(LogLevel::error);
    }

    std::vector<std::string> lines;
};

TEST_F(LoggerTest, WritesSourceAndFormattedTextAtBothLevels)
{
    const Logger log("KDVSASHBA:4711");
    log.info("pass %d of %s", 3, "many");
    log.error("indication send failure: %d", 1);
    EXPECT_THAT(lines, ElementsAre("I KDVSASHBA:4711|pass 3 of many", "E KDVSASHBA:4711|indication send failure: 1"));
}

TEST_F(LoggerTest, AppendsToTheSourceOfThisLoggerOnly)
{
    Logger log("P:1");
    const Logger before = log;
    log.appendLogSource(":");
    const Logger between = log;
    log.appendLogSource("KDV_SASDiskDrive");
    EXPECT_EQ(before.source(), "P:1");
    EXPECT_EQ(between.source(), "P:1:");
    EXPECT_EQ(log.source(), "P:1:KDV_SASDiskDrive");
}

TEST_F(LoggerTest, SharesEqualSources)
{
    Logger first("P:2");
    Logger second("P:2");
    first.appendLogSource(":");
    second.appendLogSource(":");
    first.appendLogSource("A");
    second.appendLogSource("A");
    EXPECT_EQ(&first.source(), &second.source());
    second.appendLogSource("B");
    EXPECT_NE(&first.source(), &second.source());
    EXPECT_EQ(second.source(), "P:2:AB");
}

TEST_F(LoggerTest, TellsSourcesApartThatShareASuffix)
{
    Logger first("P:3");
    Logger second("P:4");
    first.appendLogSource(":A");
    second.appendLogSource(":A");
    EXPECT_EQ(first.source(), "P:3:A");
    EXPECT_EQ(second.source(), "P:4:A");
    first.appendLogSource("");
    EXPECT_EQ(first.source(), "P:3:A");
}

TEST_F(LoggerTest, AcceptsSourcesThatAreNotTerminated)
{
    Logger log(std::string_view("KDVSASHBA and more", 9));
    log.appendLogSource(std::string_view(":Fan:2", 4));
    EXPECT_EQ(log.source(), "KDVSASHBA:Fan");
}

TEST_F(LoggerTest, WritesNothingBelowTheLevel)
{
    const Logger log("P:5");
    setLogLevel(LogLevel::error);
    log.info("hidden");
    EXPECT_THAT(lines, IsEmpty());
    log.error("shown");
    EXPECT_THAT(lines, SizeIs(1));
    setLogLevel(LogLevel::off);
    log.error("hidden");
    log.info("hidden");
    EXPECT_THAT(lines, SizeIs(1));
}

TEST_F(LoggerTest, ReadsNoArgumentAtALevelThatIsOff)
{
    const Logger log("P:6");
    setLogLevel(LogLevel::error);
    const char* unreadable = reinterpret_cast<const char*>(1); // formatting it would end the test program
    log.info("%s", unreadable);
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(LoggerTest, MakesControlCharactersOfArgumentsVisible)
{
    const Logger log("P:7");
    log.error("text %s end", "a\nb\tc\x1b[2J\x7f");
    EXPECT_THAT(lines, ElementsAre("E P:7|text a\\nb\\tc\\x1b[2J\\x7f end"));
}

TEST_F(LoggerTest, CutsLongLinesAndMarksTheCut)
{
    const Logger log("P:8");
    log.error("%s", std::string(100000, 'x').c_str());
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_LT(lines[0].size(), 2048u);
    EXPECT_EQ(lines[0].substr(lines[0].size() - 4), "x...");
}

TEST_F(LoggerTest, KeepsErrno)
{
    const Logger log("P:9");
    setLogSink([](LogLevel, std::string_view, std::string_view) { errno = EBADF; });
    errno = ENOENT;
    log.error("text");
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(LoggerTest, SurvivesASinkThatThrowsOrLogs)
{
    const Logger log("P:10");
    int calls = 0;
    setLogSink([&](LogLevel, std::string_view, std::string_view) {
        ++calls;
        log.error("from inside");
        throw 1;
    });
    log.error("once");
    log.error("twice");
    EXPECT_EQ(calls, 2);
}

TEST_F(LoggerTest, ServesManyThreadsThatMakeTheSameSources)
{
    constexpr int threadCount = 8;
    constexpr int rounds = 200;
    std::vector<const std::string*> sources(threadCount);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&sources, t] {
            for (int i = 0; i < rounds; ++i) {
                Logger log("many");
                log.appendLogSource(":");
                log.appendLogSource("class" + std::to_string(i));
                log.info("line %d", i);
                sources[static_cast<std::size_t>(t)] = &log.source();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(lines, SizeIs(threadCount * rounds));
    for (const std::string* source : sources)
        EXPECT_EQ(source, sources[0]);
    EXPECT_EQ(*sources[0], "many:class199");
}

} // namespace
