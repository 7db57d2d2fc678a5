#include "logger/LogSinks.h"

#include "logger/Logger.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::MatchesRegex;
using testing::SizeIs;

std::string printable(std::string_view text, std::size_t room = 1000)
{
    std::string out(room, '?');
    out.resize(makePrintable(text, out.data(), room));
    return out;
}

std::vector<std::string> linesOf(const std::string& path)
{
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

class LogFile : public testing::Test {
protected:
    LogFile() : path(testing::TempDir() + "kdv-log-" + std::to_string(getpid()) + ".log")
    {
        std::filesystem::remove(path);
        LogSettings settings;
        settings.target = LogTarget::file;
        settings.file = path;
        settings.level = LogLevel::info;
        opened = applyLogSettings(settings);
    }
    ~LogFile() override
    {
        applyLogSettings(LogSettings());
        std::filesystem::remove(path);
    }

    const Logger log{"P:1"}; // before the settings are applied: the first one configures the process
    std::string path;
    bool opened = false;
};

TEST(PrintableText, KeepsReadableTexts)
{
    EXPECT_EQ(printable("SAS HBA in Slot 3"), "SAS HBA in Slot 3");
    EXPECT_EQ(printable("Gr\xc3\xb6\xc3\x9f"
                        "e \xe2\x82\xac \xf0\x9f\x92\xbe"),
              "Gr\xc3\xb6\xc3\x9f"
              "e \xe2\x82\xac \xf0\x9f\x92\xbe");
    EXPECT_EQ(printable(""), "");
}

TEST(PrintableText, EscapesControlCharacters)
{
    EXPECT_EQ(printable("a\r\nb\t"), "a\\r\\nb\\t");
    EXPECT_EQ(printable(std::string_view("\0\x1b\x7f", 3)), "\\x00\\x1b\\x7f");
    EXPECT_EQ(printable("\xc2\x9b"), "\\xc2\\x9b"); // the one-character escape sequence of terminals
}

TEST(PrintableText, EscapesBytesThatAreNoUtf8)
{
    EXPECT_EQ(printable("\xff\xfe"), "\\xff\\xfe");
    EXPECT_EQ(printable("a\xc3"), "a\\xc3");
    EXPECT_EQ(printable("\xc0\xaf"), "\\xc0\\xaf");                   // overlong
    EXPECT_EQ(printable("\xe0\x80\xaf"), "\\xe0\\x80\\xaf");          // overlong
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");          // surrogate
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80"); // beyond the last character
    EXPECT_EQ(printable("\x80z"), "\\x80z");
}

TEST(PrintableText, CutsBetweenCharactersWithAMark)
{
    EXPECT_EQ(printable("0123456789", 10), "0123456789");
    EXPECT_EQ(printable("0123456789X", 10), "0123456...");
    EXPECT_EQ(printable("01234\xe2\x82\xac\xe2\x82\xac", 10), "01234...");
    EXPECT_EQ(printable("012345\n\n", 9), "012345...");
    EXPECT_EQ(printable("abc", 2), "ab");
    EXPECT_EQ(printable("abcd", 3), "...");
    EXPECT_EQ(printable("abc", 0), "");
}

TEST(PrintableText, NeverLeavesItsRoom)
{
    for (std::size_t room = 0; room < 40; ++room) {
        std::string text;
        for (unsigned i = 0; i < 60; ++i)
            text += static_cast<char>((i * 37 + room) & 0xff);
        std::string out(room + 8, '#');
        const std::size_t size = makePrintable(text, out.data(), room);
        EXPECT_LE(size, room);
        EXPECT_EQ(out.substr(room), "########");
    }
}

TEST_F(LogFile, GetsTimeLevelSourceAndText)
{
    ASSERT_TRUE(opened);
    log.info("first");
    log.error("second %d", 2);
    const auto lines = linesOf(path);
    ASSERT_THAT(lines, SizeIs(2));
    const std::string time = "[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+\\.[0-9][0-9][0-9]Z ";
    EXPECT_THAT(lines[0], MatchesRegex(time + "info P:1: first"));
    EXPECT_THAT(lines[1], MatchesRegex(time + "error P:1: second 2"));
}

TEST_F(LogFile, IsContinuedNotReplaced)
{
    log.error("before");
    LogSettings settings;
    settings.target = LogTarget::file;
    settings.file = path;
    ASSERT_TRUE(applyLogSettings(settings));
    log.error("after");
    EXPECT_THAT(linesOf(path), SizeIs(2));
}

TEST_F(LogFile, CanBeChangedForAnother)
{
    const std::string other = path + ".2";
    LogSettings settings;
    settings.target = LogTarget::file;
    settings.file = other;
    ASSERT_TRUE(applyLogSettings(settings));
    log.error("there");
    EXPECT_THAT(linesOf(path), SizeIs(0));
    EXPECT_THAT(linesOf(other), SizeIs(1));
    std::filesystem::remove(other);
}

TEST_F(LogFile, GetsWholeLinesFromManyThreads)
{
    constexpr int threadCount = 4;
    constexpr int rounds = 300;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([this, t] {
            const std::string text(static_cast<std::size_t>(100 + t), static_cast<char>('a' + t));
            for (int i = 0; i < rounds; ++i)
                log.info("<%s>", text.c_str());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const auto lines = linesOf(path);
    EXPECT_THAT(lines, SizeIs(threadCount * rounds));
    for (const std::string& line : lines)
        ASSERT_THAT(line, MatchesRegex(".*Z info P:1: <(a+|b+|c+|d+)>"));
}

TEST_F(LogFile, CutsOverlongSourcesToo)
{
    const Logger wordy(std::string(5000, 's'));
    wordy.error("%s", std::string(5000, 't').c_str());
    const auto lines = linesOf(path);
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_LT(lines[0].size(), maximumLine);
    EXPECT_THAT(lines[0], MatchesRegex(".*s\\.\\.\\.: t+\\.\\.\\."));
}

TEST_F(LogFile, ThatCannotBeOpenedIsTold)
{
    LogSettings settings;
    settings.target = LogTarget::file;
    settings.file = path + ".folder/deep/file";
    EXPECT_FALSE(applyLogSettings(settings));
}

TEST_F(LogFile, WaitsWhileAFunctionTakesTheLines)
{
    std::vector<std::string> taken;
    setLogSink([&](LogLevel, std::string_view, std::string_view text) { taken.emplace_back(text); });
    log.error("to the function");
    setLogSink({});
    log.error("to the file");
    EXPECT_THAT(taken, testing::ElementsAre("to the function"));
    EXPECT_THAT(linesOf(path), SizeIs(1));
}

TEST(StandardErrorSink, GetsLevelSourceAndText)
{
    const Logger log("P:2");
    LogSettings settings;
    settings.target = LogTarget::standardError;
    ASSERT_TRUE(applyLogSettings(settings));
    testing::internal::CaptureStderr();
    log.error("fan failed\n");
    const std::string written = testing::internal::GetCapturedStderr();
    applyLogSettings(LogSettings());
    EXPECT_EQ(written, "error P:2: fan failed\\n\n");
}

} // namespace
