// Files that were made to do harm: none may crash, hang or fill the memory; all end in a message.
#include "Playground.h"
#include "sashba/scenario/ScenarioReader.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <gmock/gmock.h>

namespace KDV {
namespace {

using testing::HasSubstr;

std::string problemsOf(const std::string& text)
{
    Problems problems;
    EXPECT_FALSE(readScenario(text, problems)) << text.substr(0, 100);
    EXPECT_FALSE(problems.empty());
    return problems.text();
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string shipped(const std::string& name)
{
    std::ifstream file(std::string(KDV_SOURCE_DIR) + "/scenarios/" + name, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_FALSE(text.empty());
    return text;
}

TEST(HostileFile, DeepNestingIsRefusedEarly)
{
    EXPECT_THAT(problemsOf(repeated("[", 1000000)), HasSubstr("expected at most 16 levels of nesting"));
    EXPECT_THAT(problemsOf(repeated("{\"hbas\":", 1000000)), HasSubstr("/hbas/hbas"));
    EXPECT_THAT(problemsOf("{\"hbas\": " + repeated("[", 15) + repeated("]", 15) + "}"),
                HasSubstr("/hbas/0: expected"));
}

TEST(HostileFile, HugeNumbersAreNumbersThatDoNotFit)
{
    for (const char* number : {"1e309", "-1e309", "99999999999999999999999999", "-9223372036854775809", "1e-400"})
        EXPECT_FALSE(problemsOf(std::string(R"({"hbas": [{"hbaNumber": )") + number + "}]}").empty());
    EXPECT_THAT(problemsOf(R"({"hbas": [{"hbaNumber": )" + repeated("9", 100000) + "}]}"),
                testing::SizeIs(testing::Lt(400U)));
}

TEST(HostileFile, EveryTruncationOfAGoodFileIsRefused)
{
    const std::string text = shipped("everything-failed.json");
    const std::size_t end = text.rfind('}');
    ASSERT_NE(end, std::string::npos);
    for (std::size_t length = 0; length <= end; ++length)
        ASSERT_FALSE(problemsOf(text.substr(0, length)).empty());
}

// Replaces each value in turn by one of every other type; the reader may accept or refuse, but must answer.
TEST(HostileFile, ValuesOfAnyTypeAnywhereAreAnswered)
{
    const std::string text = shipped("default.json");
    const std::string replacements[] = {"null", "true", "-1", "1e99", "\"\"", "[]", "{}", "[[]]", "4294967296"};
    std::size_t colon = text.find(": ");
    std::size_t refused = 0;
    for (std::size_t turn = 0; colon != std::string::npos; ++turn, colon = text.find(": ", colon + 1)) {
        const std::size_t end = text.find_first_of(",}]\n", colon);
        const std::string changed = text.substr(0, colon + 2) + replacements[turn % 9] + text.substr(end);
        Problems problems;
        const bool usable = readScenario(changed, problems).has_value();
        ASSERT_EQ(usable, problems.empty());
        refused += usable ? 0 : 1;
    }
    EXPECT_GT(refused, 300U);
}

TEST(HostileFile, RandomDamageIsAnswered)
{
    const std::string text = shipped("default.json");
    std::mt19937 random(4711); // fixed: a failure can be repeated
    for (int turn = 0; turn < 500; ++turn) {
        std::string damaged = text;
        for (int hit = 0; hit < 3; ++hit)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        Playground play(damaged);
        play.pass(3);
        EXPECT_EQ(play.hbas().empty(), !play.errors.empty());
    }
}

TEST(HostileFile, MoreElementsThanAnyMachineHasAreRefused)
{
    std::string drives = R"({"driveNumber":0})";
    drives += repeated(R"(,{"driveNumber":0,"duplicateNumber":true})", static_cast<int>(mostElements));
    EXPECT_THAT(problemsOf(oneHba("\"physicalDrives\": [" + drives + "]")),
                HasSubstr("/hbas: expected at most 200000 elements"));
}

TEST(HostileFile, MoreChangesThanAnyTimelineHasAreRefused)
{
    std::string changes = "1";
    changes += repeated(",1", static_cast<int>(mostChanges));
    EXPECT_THAT(problemsOf(oneHba("", "\"timeline\": [" + changes + "]")),
                HasSubstr("/timeline: expected at most 100000 changes"));
}

} // namespace
} // namespace KDV
