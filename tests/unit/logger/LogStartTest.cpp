// What happens when the first Logger of a process is made: a program of its own, because that is once. syslog is
// answered by the function below, which the library finds before that of the C library.
#include "logger/LogSettings.h"
#include "logger/Logger.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <syslog.h>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

struct SyslogLine {
    int priority;
    std::string text;
};
std::vector<SyslogLine> syslogLines;

void keepSyslogLine(int priority, const char* format, std::va_list arguments) __attribute__((format(printf, 2, 0)));

void keepSyslogLine(int priority, const char* format, std::va_list arguments)
{
    char text[4096];
    std::vsnprintf(text, sizeof text, format, arguments);
    syslogLines.push_back({priority, text});
}

} // namespace

extern "C" __attribute__((visibility("default"), format(printf, 2, 3))) void syslog(int priority, const char* format,
                                                                                    ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    keepSyslogLine(priority, format, arguments);
    va_end(arguments);
}

// What syslog becomes where the compiler checks buffers.
extern "C" __attribute__((visibility("default"), format(printf, 3, 4))) void __syslog_chk(int priority, int,
                                                                                          const char* format, ...);
extern "C" void __syslog_chk(int priority, int, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    keepSyslogLine(priority, format, arguments);
    va_end(arguments);
}

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::SizeIs;

std::vector<std::string> linesOf(const std::string& path)
{
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

TEST(FirstLogger, ReportsMistakesOnceToSyslogAndFollowsTheRest)
{
    const std::string directory = testing::TempDir() + "kdv-log-start-" + std::to_string(getpid());
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/logger.conf") << "colour = red\nlevel = info\nsink = file:" << directory << "/x.log\n";
    setenv("KDV_CONFIG_DIR", directory.c_str(), 1);
    unsetenv("KDV_LOG");
    unsetenv("KDV_LOG_LEVEL");

    const Logger log("KDVSASHBA:1");
    ASSERT_THAT(syslogLines, SizeIs(1));
    EXPECT_EQ(syslogLines[0].priority, LOG_ERR | LOG_DAEMON);
    EXPECT_EQ(syslogLines[0].text,
              "KDVLogger: " + directory + "/logger.conf:1: key: expected sink or level, found \"colour\"");
    const Logger another("KDVSASHBA:2");
    EXPECT_THAT(syslogLines, SizeIs(1));

    log.info("pass");
    EXPECT_THAT(linesOf(directory + "/x.log"), ElementsAre(EndsWith("Z info KDVSASHBA:1: pass")));

    // Later the program may choose again.
    applyLogSettings(LogSettings());
    syslogLines.clear();
    log.info("hidden");
    log.error("100%% of %s", "x\n");
    ASSERT_THAT(syslogLines, SizeIs(1));
    EXPECT_EQ(syslogLines[0].text, "KDVSASHBA:1: 100% of x\\n"); // percent signs of a text are no formats
    setLogLevel(LogLevel::info);
    log.info("shown");
    EXPECT_EQ(syslogLines[1].priority, LOG_INFO | LOG_DAEMON);

    LogSettings nowhere;
    nowhere.target = LogTarget::file;
    nowhere.file = directory + "/no/such/folder/x.log";
    EXPECT_FALSE(applyLogSettings(nowhere));
    syslogLines.clear();
    log.error("still seen");
    EXPECT_THAT(syslogLines, SizeIs(1));
    std::filesystem::remove_all(directory);
}

} // namespace
