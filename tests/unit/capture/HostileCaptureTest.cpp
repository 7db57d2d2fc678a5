// Trees and devices that do what they can to keep a capture from coming to an end.
#include "ExampleMachine.h"
#include "capture/Description.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <set>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KdvSas {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

class HostileCapture : public testing::Test {
protected:
    HostileCapture()
    {
        disk.endDevice = "";
        host = machine.addHba({});
        device = machine.addDisk(host, disk);
        settings.root = machine.root();
        settings.opener = KDV::makeCaptureOpener(machine.root());
        settings.asking.deadline = settings.patience = std::chrono::seconds(60);
    }

    static const CapturedEntry* find(const MachineCapture& made, const std::string& path)
    {
        for (const CapturedEntry& entry : made.captured.entries) {
            if (entry.path == path) return &entry;
        }
        return nullptr;
    }
    static std::vector<std::string> whyNot(const MachineCapture& made, const std::string& path)
    {
        std::vector<std::string> whys;
        for (const Unread& unread : made.captured.unread) {
            if (unread.path == path) whys.push_back(unread.why);
        }
        return whys;
    }

    KDV::FakeSysfs machine;
    KDV::FakeDisk disk;
    std::string host, device;
    CaptureSettings settings;
};

struct Gate {
    std::mutex lock;
    std::condition_variable changed;
    bool open = false;

    void wait()
    {
        std::unique_lock<std::mutex> guard(lock);
        changed.wait(guard, [this] { return open; });
    }
    void release()
    {
        const std::lock_guard<std::mutex> guard(lock);
        open = true;
        changed.notify_all();
    }
};

TEST_F(HostileCapture, GoesOnWithoutAttributesThatDoNotAnswer)
{
    KDV::FakeDisk other = disk;
    other.address = "0:0:1:0";
    other.block = "sdb";
    other.wwid = "naa.5000a72001240010";
    other.serial = "SP0002";
    machine.addDisk(host, other);
    const auto gate = std::make_shared<Gate>();
    const ino_t silent = [this] {
        struct stat status {};
        stat(machine.path(device).c_str(), &status);
        return status.st_ino;
    }();
    settings.patience = std::chrono::milliseconds(500);
    settings.read = [gate, silent](int folder, const std::string& name) {
        struct stat status {};
        fstat(folder, &status);
        if (status.st_ino == silent && name == "model") gate->wait();
        return readFile(folder, name, 1000);
    };
    const MachineCapture made = captureMachine(settings);
    EXPECT_THAT(whyNot(made, "sys/" + device + "/model"), Contains(HasSubstr("does not answer in time")));
    EXPECT_EQ(find(made, "sys/" + device + "/vendor"), nullptr) << "nothing more is tried of this device";
    EXPECT_NE(find(made, "sys/class/scsi_device/0:0:1:0"), nullptr);
    const auto rest = std::count_if(made.captured.entries.begin(), made.captured.entries.end(), [](const auto& entry) {
        return entry.path.find("/0:0:1:0/vendor") != std::string::npos;
    });
    EXPECT_EQ(rest, 1);
    gate->release();
}

TEST_F(HostileCapture, DoesNotWaitForEachOfManyDevicesThatHang)
{
    for (unsigned i = 1; i <= 40; ++i) {
        KDV::FakeDisk other = disk;
        other.address = "0:0:" + std::to_string(i) + ":0";
        other.block = "sdx" + std::to_string(i);
        other.parent = "port-0:" + std::to_string(i);
        other.endDevice = "end_device-0:" + std::to_string(i);
        other.bay = std::to_string(i);
        machine.addDisk(host, other);
    }
    const auto gate = std::make_shared<Gate>();
    const auto waited = std::make_shared<std::atomic<int>>(0);
    settings.patience = std::chrono::milliseconds(200);
    settings.read = [gate, waited](int folder, const std::string& name) {
        if (name == "bay_identifier") {
            ++*waited;
            gate->wait();
        }
        return readFile(folder, name, 1000);
    };
    const MachineCapture made = captureMachine(settings);
    gate->release();
    EXPECT_LE(waited->load(), 8);
    EXPECT_THAT(made.captured.unread, Contains(testing::Field(&Unread::why, HasSubstr("no more devices are asked"))));
    const auto vendors =
        std::count_if(made.captured.entries.begin(), made.captured.entries.end(), [](const auto& entry) {
            return KDV::lastOf(entry.path) == "vendor" && entry.kind == CapturedEntry::Kind::File;
        });
    EXPECT_GE(vendors, 41 - 8) << "what the kernel knows without asking is there";
}

TEST_F(HostileCapture, ListsFilesThatVanishOrMayNotBeRead)
{
    settings.read = [](int folder, const std::string& name) {
        FileRead read = readFile(folder, name, 1000);
        if (name != "model" && name != "rev") return read;
        read.end = FileRead::End::Failed;
        read.error = name == "model" ? ENOENT : EACCES;
        return read;
    };
    const MachineCapture made = captureMachine(settings);
    EXPECT_THAT(whyNot(made, "sys/" + device + "/model"), Contains("No such file or directory"));
    EXPECT_THAT(whyNot(made, "sys/" + device + "/rev"), Contains("Permission denied"));
    EXPECT_NE(find(made, "sys/" + device + "/vendor"), nullptr);
}

TEST_F(HostileCapture, CutsAttributesWithoutEnd)
{
    machine.file(device + "/inquiry", std::string(10 << 20, 'x'));
    const MachineCapture made = captureMachine(settings);
    ASSERT_NE(find(made, "sys/" + device + "/inquiry"), nullptr);
    EXPECT_LE(find(made, "sys/" + device + "/inquiry")->content.size(), 1U << 20);
    EXPECT_THAT(whyNot(made, "sys/" + device + "/inquiry"), Contains(HasSubstr("only the first")));
}

TEST_F(HostileCapture, FollowsNoLinks)
{
    const KDV::FakeSysfs outside;
    outside.file("host9/scsi_host/host9/proc_name", "mpt3sas\n");
    outside.file("host9/scsi_host/host9/board_name", "OUTSIDE\n");
    fs::create_symlink(outside.root(), machine.path("devices/away"));
    machine.link("class/scsi_host/host9", "devices/away/host9/scsi_host/host9");
    machine.link(device + "/loop", device);
    machine.link("class/scsi_host/host8", "class/scsi_host/host8");
    fs::create_symlink("../../../../../../../../../../etc/passwd", machine.path(device + "/model2"));
    fs::create_symlink("/etc/passwd", machine.path(device + "/absolute"));
    const MachineCapture made = captureMachine(settings);
    for (const CapturedEntry& entry : made.captured.entries)
        EXPECT_THAT(entry.content, testing::Not(HasSubstr("OUTSIDE"))) << entry.path;
    EXPECT_THAT(whyNot(made, "sys/" + device + "/model2"), Contains("a link that leads out of the tree"));
    EXPECT_THAT(whyNot(made, "sys/" + device + "/absolute"), Contains("a link that leads out of the tree"));
    ASSERT_NE(find(made, "sys/" + device + "/loop"), nullptr);
    EXPECT_EQ(find(made, "sys/" + device + "/loop")->content, ".");
    EXPECT_EQ(find(made, "sys/" + device + "/loop/model"), nullptr);
}

TEST_F(HostileCapture, EndsInFoldersWithoutEnd)
{
    std::string deep = device;
    for (int i = 0; i < 200; ++i)
        deep += "/target0:0:0";
    machine.folder(deep);
    const MachineCapture made = captureMachine(settings);
    EXPECT_LT(made.captured.entries.size(), 200U);
    EXPECT_THAT(made.captured.unread, Contains(testing::Field(&Unread::why, HasSubstr("deeper than any device"))));
}

TEST_F(HostileCapture, OpensNoPipe)
{
    ASSERT_EQ(mkfifo(machine.path(device + "/wwn").c_str(), 0600), 0);
    fs::remove(machine.path(device + "/model"));
    ASSERT_EQ(mkfifo(machine.path(device + "/model").c_str(), 0600), 0);
    const MachineCapture made = captureMachine(settings);
    EXPECT_THAT(whyNot(made, "sys/" + device + "/model"), Contains("no file, folder or link"));
}

class HangingLink final : public KDV::DeviceLink {
public:
    explicit HangingLink(std::shared_ptr<Gate> gate) : _gate(std::move(gate)) {}
    KDV::ReadyReply testUnitReady() override
    {
        KDV::ReadyReply reply;
        reply.readiness = KDV::Readiness::Ready;
        return reply;
    }
    std::string logPage(std::uint8_t) override
    {
        _gate->wait();
        return "late";
    }
    std::string enclosurePage(std::uint8_t) override { return {}; }
    std::string smartctlOutput() override { return {}; }

private:
    std::shared_ptr<Gate> _gate;
};

class HangingOpener final : public KDV::DeviceOpener {
public:
    explicit HangingOpener(std::shared_ptr<Gate> gate) : _gate(std::move(gate)) {}
    std::unique_ptr<KDV::DeviceLink> open(const KDV::AskedDevice& asked, std::chrono::milliseconds,
                                          KDV::ReadyReply& reply) override
    {
        if (KDV::lastOf(asked.path) == "0:0:0:0") return std::make_unique<HangingLink>(_gate);
        reply.denied = true;
        return nullptr;
    }

private:
    std::shared_ptr<Gate> _gate;
};

TEST_F(HostileCapture, MarksDevicesThatHangAndThoseThatMayNotBeAsked)
{
    KDV::FakeDisk other = disk;
    other.address = "0:0:1:0";
    other.block = "sdb";
    other.wwid = "naa.5000a72001240010";
    machine.addDisk(host, other);
    const auto gate = std::make_shared<Gate>();
    settings.opener = std::make_shared<HangingOpener>(gate);
    settings.asking.deadline = std::chrono::milliseconds(300);
    struct Told {
        std::mutex lock;
        std::vector<std::string> texts;
    };
    const auto told = std::make_shared<Told>();
    settings.tell = [told](const std::string& text) {
        const std::lock_guard<std::mutex> guard(told->lock);
        told->texts.push_back(text);
    };
    const MachineCapture made = captureMachine(settings);
    gate->release();
    ASSERT_NE(find(made, "pages/0:0:0:0/ready"), nullptr);
    EXPECT_EQ(find(made, "pages/0:0:0:0/ready")->content, "hung\n");
    EXPECT_EQ(find(made, "pages/0:0:0:0/log_00"), nullptr);
    EXPECT_THAT(whyNot(made, "pages/0:0:0:0"), Contains("the device does not answer in time"));
    ASSERT_NE(find(made, "pages/0:0:1:0/ready"), nullptr);
    EXPECT_EQ(find(made, "pages/0:0:1:0/ready")->content, "denied\n");
    EXPECT_THAT(whyNot(made, "pages/0:0:1:0"), Contains("no permission to ask the device"));
    const std::lock_guard<std::mutex> guard(told->lock);
    EXPECT_THAT(told->texts, Contains(HasSubstr("does not answer in time")));
    EXPECT_THAT(told->texts, Contains(HasSubstr("no permission to ask devices")));
}

TEST_F(HostileCapture, OfATreeThatIsNotThereIsEmpty)
{
    settings.root = machine.root() + "/nothing";
    const MachineCapture made = captureMachine(settings);
    EXPECT_EQ(made.adapters, 0U);
    EXPECT_THAT(made.captured.entries, IsEmpty());
}

TEST(Description, KeepsALineALine)
{
    MachineCapture made;
    made.adapters = 2;
    made.captured.unread = {{"sys/a\nb", "Permission denied"}, {"sys/c", "Permission denied"}};
    const std::string text = describeCapture(made, {"tool 1", "Linux 6.1", true, false, false});
    EXPECT_THAT(text, HasSubstr("made by: tool 1\n"));
    EXPECT_THAT(text, HasSubstr("SAS adapters: 2\n"));
    EXPECT_THAT(text, HasSubstr("not read: 2\n"));
    EXPECT_THAT(text, HasSubstr("\nPermission denied:\n    sys/a?b\n    sys/c\n"));
}

} // namespace
} // namespace KdvSas
