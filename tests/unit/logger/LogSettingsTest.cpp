#include "logger/LogSettings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Settings of the environment, put back at the end.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : _name(name)
    {
        if (const char* before = std::getenv(name)) {
            _had = true;
            _before = before;
        }
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable()
    {
        if (_had)
            setenv(_name, _before.c_str(), 1);
        else
            unsetenv(_name);
    }

private:
    const char* _name;
    bool _had = false;
    std::string _before;
};

class LogSettingsFile : public testing::Test {
protected:
    LogSettingsFile()
        : directory(testing::TempDir() + "kdv-log-settings-" + std::to_string(getpid())),
          configuration("KDV_CONFIG_DIR", directory.c_str()), sink("KDV_LOG", nullptr), level("KDV_LOG_LEVEL", nullptr)
    {
        std::filesystem::create_directories(directory);
    }
    ~LogSettingsFile() override { std::filesystem::remove_all(directory); }

    void write(const char* text) const { std::ofstream(directory + "/logger.conf") << text; }

    std::string directory;
    ScopedVariable configuration;
    ScopedVariable sink;
    ScopedVariable level;
    std::vector<std::string> mistakes;
};

TEST(LogSettings, StartAsErrorsToSyslog)
{
    const LogSettings settings;
    EXPECT_EQ(settings.target, LogTarget::syslog);
    EXPECT_EQ(settings.level, LogLevel::error);
}

TEST(LogSettings, KnowThreeLevels)
{
    LogLevel level = LogLevel::error;
    EXPECT_TRUE(parseLogLevel("info", level));
    EXPECT_EQ(level, LogLevel::info);
    EXPECT_TRUE(parseLogLevel("off", level));
    EXPECT_EQ(level, LogLevel::off);
    EXPECT_TRUE(parseLogLevel("error", level));
    EXPECT_EQ(level, LogLevel::error);
    for (const char* wrong : {"", "INFO", "debug", "error "}) {
        EXPECT_FALSE(parseLogLevel(wrong, level)) << wrong;
        EXPECT_EQ(level, LogLevel::error);
    }
}

TEST(LogSettings, KnowThreeTargets)
{
    LogSettings settings;
    EXPECT_TRUE(parseLogTarget("file:/var/log/kdv.log", settings));
    EXPECT_EQ(settings.target, LogTarget::file);
    EXPECT_EQ(settings.file, "/var/log/kdv.log");
    EXPECT_TRUE(parseLogTarget("stderr", settings));
    EXPECT_EQ(settings.target, LogTarget::standardError);
    EXPECT_EQ(settings.file, "");
    EXPECT_TRUE(parseLogTarget("syslog", settings));
    EXPECT_EQ(settings.target, LogTarget::syslog);
    for (const char* wrong : {"", "file", "file:", "file:/", "file:relative", "journal"}) {
        EXPECT_FALSE(parseLogTarget(wrong, settings)) << wrong;
        EXPECT_EQ(settings.target, LogTarget::syslog);
    }
}

TEST(LogSettings, ReadLinesWithBlanksAndComments)
{
    LogSettings settings;
    std::vector<std::string> mistakes;
    parseLogConfiguration("# where lines go\n\n  sink =  file:/tmp/a b.log \r\nlevel=info", settings, mistakes);
    EXPECT_THAT(mistakes, IsEmpty());
    EXPECT_EQ(settings.target, LogTarget::file);
    EXPECT_EQ(settings.file, "/tmp/a b.log");
    EXPECT_EQ(settings.level, LogLevel::info);
}

TEST(LogSettings, NameTheLineOfEachMistakeAndKeepTheRest)
{
    LogSettings settings;
    std::vector<std::string> mistakes;
    parseLogConfiguration("sink\nlevel = loud\ncolour = red\nsink = stderr\n", settings, mistakes);
    EXPECT_THAT(mistakes, ElementsAre("1: line: expected key = value, found \"sink\"",
                                      "2: level: expected error, info or off, found \"loud\"",
                                      "3: key: expected sink or level, found \"colour\""));
    EXPECT_EQ(settings.target, LogTarget::standardError);
    EXPECT_EQ(settings.level, LogLevel::error);
}

TEST_F(LogSettingsFile, AreDefaultWithoutAFile)
{
    const LogSettings settings = readLogSettings(mistakes);
    EXPECT_THAT(mistakes, IsEmpty());
    EXPECT_EQ(settings.target, LogTarget::syslog);
}

TEST_F(LogSettingsFile, ComeFromTheConfigurationDirectory)
{
    write("sink = stderr\nlevel = info\n");
    const LogSettings settings = readLogSettings(mistakes);
    EXPECT_THAT(mistakes, IsEmpty());
    EXPECT_EQ(settings.target, LogTarget::standardError);
    EXPECT_EQ(settings.level, LogLevel::info);
}

TEST_F(LogSettingsFile, GiveWayToTheEnvironment)
{
    write("sink = stderr\nlevel = info\n");
    const ScopedVariable otherSink("KDV_LOG", "file:/tmp/other.log");
    const ScopedVariable otherLevel("KDV_LOG_LEVEL", "off");
    const LogSettings settings = readLogSettings(mistakes);
    EXPECT_THAT(mistakes, IsEmpty());
    EXPECT_EQ(settings.target, LogTarget::file);
    EXPECT_EQ(settings.file, "/tmp/other.log");
    EXPECT_EQ(settings.level, LogLevel::off);
}

TEST_F(LogSettingsFile, StandWhenTheEnvironmentIsWrong)
{
    write("level = info\n");
    const ScopedVariable otherSink("KDV_LOG", "printer");
    const ScopedVariable otherLevel("KDV_LOG_LEVEL", "all");
    const LogSettings settings = readLogSettings(mistakes);
    EXPECT_THAT(mistakes, ElementsAre("KDV_LOG: expected syslog, stderr or file:/path, found \"printer\"",
                                      "KDV_LOG_LEVEL: expected error, info or off, found \"all\""));
    EXPECT_EQ(settings.target, LogTarget::syslog);
    EXPECT_EQ(settings.level, LogLevel::info);
}

TEST_F(LogSettingsFile, ReportMistakesWithFileAndLine)
{
    write("\nlevel = 3\n");
    readLogSettings(mistakes);
    EXPECT_THAT(mistakes, ElementsAre(directory + "/logger.conf:2: level: expected error, info or off, found \"3\""));
}

TEST_F(LogSettingsFile, ReportAFileThatCannotBeRead)
{
    std::filesystem::create_directories(directory + "/logger.conf");
    const LogSettings settings = readLogSettings(mistakes);
    EXPECT_THAT(mistakes, ElementsAre(directory + "/logger.conf: cannot be read: Is a directory"));
    EXPECT_EQ(settings.level, LogLevel::error);
}

} // namespace
