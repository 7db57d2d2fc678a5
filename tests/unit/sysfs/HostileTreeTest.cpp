// Trees that no kernel makes, or that are half gone: every attribute replaced, removed or turned into something else,
// one after the other. Nothing crashes, hangs or throws, and the records stay readable: texts end in their fields and
// are printable, counts fit their lists.
#include "LiveRecords.h"

#include <algorithm>
#include <functional>
#include <random>
#include <sys/stat.h>

#include <gtest/gtest.h>

namespace KDV {
namespace {
namespace fs = std::filesystem;

template <std::size_t capacity>
void checkText(const char (&field)[capacity])
{
    const std::string_view text = textOf(field);
    EXPECT_LT(text.size(), capacity);
    for (const char letter : text)
        EXPECT_TRUE(static_cast<unsigned char>(letter) >= 0x20 && letter != 0x7F);
}

void checkRecords(const LiveRecords& records)
{
    for (std::size_t i = 0; i < records.hbas().size(); ++i) {
        checkText(records.hba(i).name);
        checkText(records.hba(i).firmwareVersion);
        checkText(records.hba(i).logicalLocation);
        for (const SasPhysicalDriveRecord* drive : records.drives(i)) {
            checkText(drive->location);
            checkText(drive->inquiry);
            checkText(drive->firmwareRevision);
            checkText(drive->serialNumber);
            checkText(drive->osName);
            checkText(drive->name);
            EXPECT_NE(drive->status, 2) << "nobody asked it";
        }
        for (const SasStorageBoxRecord* box : records.boxes(i)) {
            checkText(box->name);
            checkText(box->model);
            checkText(box->serialNumber);
            checkText(box->manufacturer);
            EXPECT_EQ(box->status, 0);
        }
        for (const SasLogicalDriveRecord* volume : records.volumes(i)) {
            checkText(volume->osName);
            EXPECT_LE(+volume->memberCount, 16U);
            EXPECT_LE(+volume->spareCount, 16U);
        }
    }
}

// A machine with one of everything.
void build(FakeSysfs& sysfs)
{
    const std::string host = sysfs.addHba({0,
                                           "pci0000:00/0000:00:01.0/0000:01:00.0",
                                           "mpt3sas",
                                           "running",
                                           true,
                                           {{"board_name", "ZX9300-8e"}, {"version_fw", "16"}}});
    sysfs.addSlot("3", "0000:01:00");
    const std::string port = sysfs.addPort(host, "port-0:0", {0});
    sysfs.addExpander(port, "expander-0:0", "0x500a098000005000");
    FakeDisk disk;
    disk.parent = "port-0:0/expander-0:0/port-0:0:1";
    disk.endDevice = "end_device-0:0:1";
    disk.bay = "1";
    disk.enclosureIdentifier = "0x500a098000005080";
    const std::string device = sysfs.addDisk(host, disk);
    sysfs.file(device + "/path_info", "[0:0:0:0] Direct-Access PORT: 1I BOX: 1 BAY: 4 Active\n");
    sysfs.file(device + "/vpd_pg83", vpdPage(0x83, ""));
    FakeDisk ses;
    ses.type = "13";
    ses.address = "0:0:1:0";
    ses.block = "";
    ses.wwid = "naa.500a098000005081";
    ses.parent = "port-0:0/expander-0:0/port-0:0:2";
    ses.endDevice = "end_device-0:0:2";
    sysfs.putInSlot(device, sysfs.addEnclosure(sysfs.addDisk(host, ses), "0x500a098000005080", 2), "1");
    FakeDisk volume;
    volume.address = "0:1:0:0";
    volume.block = "sdb";
    volume.wwid = "naa.600a098000005081";
    const std::string logical = sysfs.addDisk(host, volume);
    sysfs.file(logical + "/raid_devices/0:1:0:0/level", "raid5\n");
    sysfs.file(logical + "/raid_devices/0:1:0:0/state", "active\n");
    const std::string md = sysfs.addMd("md0", "raid1", 2);
    sysfs.addMdMember(md, device, "sda", "0", "in_sync");
}

// All entries but directories, relative to the tree.
std::vector<std::string> entries(const FakeSysfs& sysfs, bool directories)
{
    std::vector<std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(sysfs.root())) {
        if (fs::is_directory(entry.symlink_status()) == directories)
            all.push_back(fs::relative(entry.path().parent_path(), sysfs.root()).string() + "/" +
                          entry.path().filename().string());
    }
    std::sort(all.begin(), all.end());
    return all;
}

// Does it to a copy of every entry's tree in turn, with a source that knew the tree before and with a fresh one.
void damageEach(bool directories, const std::function<void(const FakeSysfs&, const std::string&)>& damage)
{
    std::vector<std::string> all;
    {
        FakeSysfs sysfs;
        build(sysfs);
        all = entries(sysfs, directories);
    }
    ASSERT_GT(all.size(), 20U);
    for (const std::string& entry : all) {
        SCOPED_TRACE(entry);
        FakeSysfs sysfs;
        build(sysfs);
        LiveRecords before(sysfs);
        damage(sysfs, entry);
        before.refresh();
        checkRecords(before);
        checkRecords(LiveRecords(sysfs));
        if (testing::Test::HasFailure()) return;
    }
}

TEST(HostileTree, AnyAttributeOrLinkMayBeGone)
{
    damageEach(false, [](const FakeSysfs& sysfs, const std::string& entry) { sysfs.remove(entry); });
}

TEST(HostileTree, AnyDirectoryMayBeGone)
{
    damageEach(true, [](const FakeSysfs& sysfs, const std::string& entry) { sysfs.remove(entry); });
}

TEST(HostileTree, AnyAttributeMayBeADirectory)
{
    damageEach(false, [](const FakeSysfs& sysfs, const std::string& entry) {
        sysfs.remove(entry);
        sysfs.folder(entry);
    });
}

TEST(HostileTree, AnythingMayBeALoopOrLeadOutOfTheTree)
{
    for (const char* target : {".", "../../../../../../../../../../../../etc/passwd", "/dev/zero", "x"}) {
        damageEach(false, [target](const FakeSysfs& sysfs, const std::string& entry) {
            sysfs.remove(entry);
            fs::create_symlink(std::string(target) == "x" ? sysfs.path(entry).filename() : fs::path(target),
                               sysfs.path(entry));
        });
    }
}

TEST(HostileTree, AnyAttributeMayBeAPipeThatNobodyWrites)
{
    damageEach(false, [](const FakeSysfs& sysfs, const std::string& entry) {
        sysfs.remove(entry);
        ASSERT_EQ(mkfifo(sysfs.path(entry).c_str(), 0600), 0);
    });
}

TEST(HostileTree, AnyAttributeMayBeBinaryHugeOrAbsurd)
{
    std::string binary;
    for (int i = 0; i < 70000; ++i)
        binary += static_cast<char>(i * 7 + i / 256);
    for (const std::string& content :
         {binary, std::string(100000, '9'), std::string("18446744073709551615\n"), std::string("-1\n"),
          std::string("0\n"), std::string("0x\n"), std::string(5000, '\0'), std::string("4294967295\n")}) {
        damageEach(false, [&content](const FakeSysfs& sysfs, const std::string& entry) {
            if (!fs::is_symlink(sysfs.path(entry))) sysfs.file(entry, content);
        });
    }
}

TEST(HostileTree, NamesAreNeverTakenForMoreThanTheyAre)
{
    FakeSysfs sysfs;
    build(sysfs);
    for (const char* name :
         {"class/scsi_host/host", "class/scsi_host/host-1", "class/scsi_host/host00", "class/scsi_host/host99999999999",
          "class/scsi_device/0:0:0", "class/scsi_device/0:0:0:0:0", "class/scsi_device/a:b:c:d",
          "class/scsi_device/99999999999:0:0:0", "block/md", "block/md0x", "class/sas_expander/x",
          "class/enclosure/ #,", "bus/pci/slots/-1/address"})
        sysfs.folder(name);
    LiveRecords records(sysfs);
    EXPECT_EQ(records.hbas().size(), 1U);
    EXPECT_EQ(records.drives().size(), 1U);
    checkRecords(records);
}

TEST(HostileTree, ARootThatIsNoneIsAMachineWithoutAdapters)
{
    for (const char* root : {"/nonexistent/sys", "/dev/null", ""}) {
        SysfsSurroundings surroundings;
        std::string said;
        surroundings.reportInfo = [&said](const std::string& text) { said = text; };
        surroundings.reportError = [](const std::string& text) { ADD_FAILURE() << text; };
        SysfsSource source(root, {}, surroundings);
        RecordTree tree;
        source.load(tree);
        source.refresh(tree);
        EXPECT_EQ(tree.head(), nullptr);
        EXPECT_NE(said.find("no SAS adapter"), std::string::npos);
    }
}

TEST(HostileTree, ChangesWhileItIsRead)
{
    FakeSysfs sysfs;
    build(sysfs);
    LiveRecords records(sysfs);
    std::mt19937 random(7); // fixed: a failure can be repeated
    for (int turn = 0; turn < 30; ++turn) {
        const std::vector<std::string> all = entries(sysfs, false);
        if (all.empty()) break;
        sysfs.remove(all[random() % all.size()]);
        records.refresh();
        checkRecords(records);
    }
}

} // namespace
} // namespace KDV
