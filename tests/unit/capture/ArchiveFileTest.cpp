// The archive itself, taken apart by the system's tar.
#include "capture/ArchiveFile.h"

#include "FakeSysfs.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <signal.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KdvSas {
namespace {

namespace fs = std::filesystem;
using Kind = CapturedEntry::Kind;

std::string contentOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class ArchiveFile : public testing::Test {
protected:
    fs::path folder() const { return place.path("").parent_path().parent_path(); }
    std::string file() const { return (folder() / "made.tar.gz").string(); }
    std::size_t filesBeside() const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()));
    }

    KDV::FakeSysfs place;
};

TEST_F(ArchiveFile, HasAllAsItWas)
{
    std::string bytes;
    for (int value = 0; value < 70000; ++value)
        bytes += static_cast<char>(value * 7);
    const std::string longName = "sys/" + std::string(180, 'l') + "/" + std::string(200, 'm');
    const std::vector<CapturedEntry> entries{
        {Kind::Folder, "sys/class/empty", ""},
        {Kind::File, "sys/binary", bytes},
        {Kind::File, "sys/none", ""},
        {Kind::File, longName, "deep\n"},
        {Kind::File, "sys/Drive Slot #24, \xc3\xbc \xff\n\"x\"", "odd\n"},
        {Kind::Link, "sys/link", "../" + std::string(150, 'n') + "/Slot #1"},
    };
    writeArchive(file(), entries);

    struct stat status {};
    ASSERT_EQ(stat(file().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    const fs::path out = folder() / "out";
    fs::create_directory(out);
    ASSERT_EQ(std::system(("tar -xzf '" + file() + "' -C '" + out.string() + "'").c_str()), 0);
    for (const CapturedEntry& entry : entries) {
        if (entry.kind == Kind::File) {
            EXPECT_EQ(contentOf(out / entry.path), entry.content) << entry.path;
        }
        if (entry.kind == Kind::Link) {
            EXPECT_EQ(fs::read_symlink(out / entry.path).string(), entry.content);
        }
        if (entry.kind == Kind::Folder) {
            EXPECT_TRUE(fs::is_directory(out / entry.path));
        }
    }
}

TEST_F(ArchiveFile, TakesThePlaceOfAnOlderOne)
{
    std::ofstream(file()) << "older";
    fs::permissions(file(), fs::perms::all);
    writeArchive(file(), {{Kind::File, "a", "b"}});
    EXPECT_NE(contentOf(file()), "older");
    struct stat status {};
    ASSERT_EQ(stat(file().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(ArchiveFile, LeavesNothingWhereItCannotBe)
{
    fs::create_directory(file());
    std::ofstream(fs::path(file()) / "in it") << "x";
    const std::size_t before = filesBeside();
    EXPECT_THROW(writeArchive(file(), {{Kind::File, "a", "b"}}), std::runtime_error);
    EXPECT_EQ(filesBeside(), before);
    EXPECT_THROW(writeArchive((folder() / "no such/made.tar.gz").string(), {}), std::runtime_error);
}

// In a process of its own, since a limit on the size of files holds for all of it. It ends without the test's own end.
TEST_F(ArchiveFile, LeavesTheOlderOneWhenThereIsNoRoom)
{
    std::ofstream(file()) << "older";
    const std::size_t before = filesBeside();
    std::string noise;
    unsigned value = 1;
    for (int i = 0; i < 200000; ++i)
        noise += static_cast<char>((value = value * 1664525 + 1013904223) >> 24);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit small{10000, 10000};
        setrlimit(RLIMIT_FSIZE, &small);
        int result = 1;
        try {
            writeArchive(file(), {{Kind::File, "noise", noise}});
        } catch (const std::runtime_error&) {
            result = 42;
        }
        _exit(result);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 42);
    EXPECT_EQ(contentOf(file()), "older");
    EXPECT_EQ(filesBeside(), before);
}

} // namespace
} // namespace KdvSas
