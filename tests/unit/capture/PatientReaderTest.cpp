// Reading of files that may never answer.
#include "capture/PatientReader.h"

#include "FakeSysfs.h"

#include <cerrno>
#include <condition_variable>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>

#include <gtest/gtest.h>

namespace KdvSas {
namespace {

using End = FileRead::End;

std::shared_ptr<const OpenFolder> folderOf(const KDV::FakeSysfs& sysfs)
{
    return std::make_shared<const OpenFolder>(::open(sysfs.root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

TEST(ReadFile, ReadsToTheEndAndNotMoreThanTheMost)
{
    const KDV::FakeSysfs sysfs;
    const std::string bytes(100000, 'x');
    sysfs.file("large", bytes);
    sysfs.file("empty", "");
    const auto folder = folderOf(sysfs);
    FileRead read = readFile(folder->get(), "large", bytes.size());
    EXPECT_EQ(read.end, End::Whole);
    EXPECT_EQ(read.bytes, bytes);
    read = readFile(folder->get(), "large", bytes.size() - 1);
    EXPECT_EQ(read.end, End::Cut);
    EXPECT_EQ(read.bytes.size(), bytes.size() - 1);
    read = readFile(folder->get(), "empty", 10);
    EXPECT_EQ(read.end, End::Whole);
    EXPECT_EQ(read.bytes, "");
}

TEST(ReadFile, RefusesWhatIsNoFile)
{
    const KDV::FakeSysfs sysfs;
    sysfs.folder("folder");
    sysfs.file("file", "x");
    sysfs.link("link", "file");
    ASSERT_EQ(mkfifo(sysfs.path("pipe").c_str(), 0600), 0);
    const auto folder = folderOf(sysfs);
    for (const char* name : {"folder", "link", "pipe", "nothing"}) {
        const FileRead read = readFile(folder->get(), name, 10);
        EXPECT_EQ(read.end, End::Failed) << name;
        EXPECT_NE(read.error, 0) << name;
    }
    EXPECT_EQ(readFile(folder->get(), "nothing", 10).error, ENOENT);
}

// Files that wait until they are let go.
struct Gate {
    std::mutex lock;
    std::condition_variable changed;
    bool open = false;

    void release()
    {
        const std::lock_guard<std::mutex> guard(lock);
        open = true;
        changed.notify_all();
    }
};

TEST(PatientReader, LeavesALateFileBehind)
{
    const KDV::FakeSysfs sysfs;
    const auto gate = std::make_shared<Gate>();
    const auto folder = folderOf(sysfs);
    PatientReader reader(std::chrono::milliseconds(300), [gate](int, const std::string& name) {
        FileRead read;
        read.end = End::Whole;
        read.bytes = "of " + name;
        if (name != "late") return read;
        std::unique_lock<std::mutex> guard(gate->lock);
        gate->changed.wait(guard, [&gate] { return gate->open; });
        return read;
    });
    EXPECT_EQ(reader(folder, "one").bytes, "of one");
    EXPECT_EQ(reader(folder, "late").end, End::Late);
    EXPECT_EQ(reader(folder, "two").bytes, "of two");
    gate->release();
    EXPECT_EQ(reader(folder, "late").bytes, "of late");
    EXPECT_EQ(reader(folder, "three").bytes, "of three");
}

TEST(PatientReader, SaysWhatWentWrong)
{
    const KDV::FakeSysfs sysfs;
    PatientReader reader(std::chrono::seconds(60),
                         [](int folder, const std::string& name) { return readFile(folder, name, 10); });
    const FileRead read = reader(folderOf(sysfs), "nothing");
    EXPECT_EQ(read.end, End::Failed);
    EXPECT_EQ(read.error, ENOENT);
    PatientReader thrower(std::chrono::seconds(60),
                          [](int, const std::string&) -> FileRead { throw std::bad_alloc(); });
    EXPECT_EQ(thrower(folderOf(sysfs), "any").error, ENOMEM);
}

} // namespace
} // namespace KdvSas
