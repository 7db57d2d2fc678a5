// The threads that ask: nothing is opened on the thread that refreshes, one device that hangs delays no other, and what
// was learned is in the records at the next refresh.
#include "FakeDevices.h"
#include "LiveRecords.h"
#include "PageBytes.h"

#include <condition_variable>
#include <functional>
#include <thread>

#include <gtest/gtest.h>

namespace KDV {
namespace {

using std::chrono::milliseconds;

std::string addDisks(FakeSysfs& sysfs, unsigned count)
{
    const std::string host = sysfs.addHba({});
    const std::string port = sysfs.addPort(host, "port-0:0", {0, 1, 2, 3});
    for (unsigned i = 0; i < count; ++i) {
        const std::string shelf = std::to_string(i / 100);
        if (i % 100 == 0)
            sysfs.addExpander(port, "expander-0:" + shelf, "0x500a09800000" + std::to_string(5000 + i / 100));
        const std::string n = std::to_string(i);
        FakeDisk disk;
        disk.address = "0:0:" + n + ":0";
        disk.block = "sdx" + n;
        disk.generic = "sg" + n;
        disk.serial = "SP" + n;
        disk.wwid = "naa.5000a7200124" + std::to_string(1000 + i);
        disk.parent = "port-0:0/expander-0:" + shelf + "/port-0:" + shelf + ":" + n;
        disk.endDevice = "end_device-0:" + shelf + ":" + n;
        disk.phy = std::to_string(i % 100);
        sysfs.addDisk(host, disk);
    }
    return host;
}

// Refreshes until the records say it; false when they never do.
bool refreshUntil(LiveRecords& records, const std::function<bool()>& holds)
{
    for (int turn = 0; turn < 6000; ++turn) {
        records.refresh();
        if (holds()) return true;
        std::mutex lock;
        std::unique_lock<std::mutex> guard(lock);
        std::condition_variable nobody;
        nobody.wait_for(guard, milliseconds(10));
    }
    return false;
}

TEST(Asking, OpensNoDeviceOnTheRefreshingThreadWith1255Disks)
{
    FakeSysfs sysfs;
    addDisks(sysfs, 1255);
    const auto devices = std::make_shared<FakeDevices>();
    LiveRecords records(sysfs, std::make_shared<FakeOpener>(devices));
    ASSERT_EQ(records.drives().size(), 1255U);
    EXPECT_EQ(records.boxes().size(), 13U);
    for (int pass = 0; pass < 5; ++pass)
        records.refresh();
    for (const SasPhysicalDriveRecord* drive : records.drives())
        EXPECT_EQ(drive->status, 2) << +drive->driveNumber;
    const std::lock_guard<std::mutex> guard(devices->lock);
    EXPECT_GE(devices->opened, 1255U);
    EXPECT_EQ(devices->openedOn.count(std::this_thread::get_id()), 0U);
}

TEST(Asking, OneThatHangsDelaysNoOtherAndIsReportedOnce)
{
    FakeSysfs sysfs;
    addDisks(sysfs, 12);
    const auto devices = std::make_shared<FakeDevices>();
    devices->hanging = {"/dev/sg3", "/dev/sg5"};
    SysfsSettings settings;
    settings.asking.deadline = milliseconds(50);
    settings.asking.diskInterval = milliseconds(20);
    settings.asking.threads = 1; // so that a hanging device would hold up all others
    LiveRecords records(sysfs, std::make_shared<FakeOpener>(devices), settings);
    const auto statuses = [&records] {
        std::string all;
        for (const SasPhysicalDriveRecord* drive : records.drives())
            all += std::to_string(drive->status);
        return all;
    };
    EXPECT_TRUE(refreshUntil(records, [&] { return statuses() == "222020222222"; })) << statuses();
    {
        const std::lock_guard<std::mutex> guard(records.reports->lock);
        EXPECT_EQ(records.reports->errors.size(), 2U) << "once a device, however often it is looked at";
        for (const std::string& error : records.reports->errors)
            EXPECT_NE(error.find("does not answer in time"), std::string::npos) << error;
    }
    devices->release();
    EXPECT_TRUE(refreshUntil(records, [&] { return statuses() == "222222222222"; })) << statuses();
    const std::lock_guard<std::mutex> guard(records.reports->lock);
    EXPECT_EQ(records.reports->errors.size(), 2U);
}

TEST(Asking, EndsWithoutWaitingForOneThatHangs)
{
    const auto devices = std::make_shared<FakeDevices>();
    devices->hanging = {"/dev/sg0"};
    {
        FakeSysfs sysfs;
        addDisks(sysfs, 1);
        SysfsSettings settings;
        settings.asking.deadline = milliseconds(1);
        const LiveRecords records(sysfs, std::make_shared<FakeOpener>(devices), settings);
        EXPECT_EQ(records.drives().at(0)->status, 0);
    }
    {
        const std::lock_guard<std::mutex> guard(devices->lock);
        EXPECT_EQ(devices->hanging.size(), 1U) << "it hangs still";
    }
    devices->release(); // the thread ends now, after all that it belonged to
}

TEST(Asking, SaysOnceThatItMayNot)
{
    FakeSysfs sysfs;
    addDisks(sysfs, 5);
    const auto devices = std::make_shared<FakeDevices>();
    devices->reply = {Readiness::Unknown, true, false, false};
    LiveRecords records(sysfs, std::make_shared<FakeOpener>(devices));
    for (const SasPhysicalDriveRecord* drive : records.drives())
        EXPECT_EQ(drive->status, 0);
    const std::lock_guard<std::mutex> guard(records.reports->lock);
    EXPECT_TRUE(records.reports->errors.empty());
    std::size_t told = 0;
    for (const std::string& info : records.reports->infos)
        told += info.find("no permission") != std::string::npos;
    EXPECT_EQ(told, 1U);
}

TEST(Asking, TakesWhatSmartctlSaysWhereThePagesSayNothing)
{
    FakeSysfs sysfs;
    addDisks(sysfs, 1);
    const auto devices = std::make_shared<FakeDevices>();
    devices->smartctl = R"({"smartctl": {}, "smart_status": {"passed": false}})";
    const LiveRecords records(sysfs, std::make_shared<FakeOpener>(devices));
    EXPECT_EQ(records.drives().at(0)->status, 3);
}

// Pages beside the tree: from the bytes of a device to the bytes of its record.
class AskedPages : public testing::Test {
protected:
    AskedPages() { host = sysfs.addHba({}); }

    std::string addDisk(unsigned rotation)
    {
        FakeDisk disk;
        disk.rotation = rotation;
        disk.parent = "port-0:0";
        disk.endDevice = "end_device-0:0";
        disk.sasAddress = "0x5000a72001240001";
        sysfs.addPort(host, "port-0:0", {0});
        return sysfs.addDisk(host, disk);
    }
    void health(int asc, int ascq, int used)
    {
        sysfs.page("0:0:0:0", "ready", "ready\n");
        sysfs.page("0:0:0:0", "log_00", logPage(0x00, bytesOf({0x00, 0x11, 0x15, 0x2F})));
        sysfs.page("0:0:0:0", "log_11", logPage(0x11, logParameter(1, bytesOf({0, 0, 0, used}))));
        sysfs.page("0:0:0:0", "log_15", logPage(0x15, logParameter(0, bytesOf({0, 0, 0x02, 0x58}))));
        sysfs.page("0:0:0:0", "log_2f", logPage(0x2F, logParameter(0, bytesOf({asc, ascq, 40}))));
    }

    FakeSysfs sysfs;
    std::string host;
};

TEST_F(AskedPages, ASolidStateDiskWithItsWear)
{
    addDisk(1);
    health(0, 0, 12);
    const LiveRecords records(sysfs);
    const SasPhysicalDriveRecord& drive = *records.drives().at(0);
    EXPECT_EQ(drive.status, 2);
    EXPECT_EQ(drive.mediaType, 3);
    EXPECT_EQ(+drive.ssdPowerOnHours, 10U);
    EXPECT_EQ(+drive.ssdEnduranceUsed, 12U);
    EXPECT_EQ(+drive.ssdLifeRemaining, 88U);
    EXPECT_EQ(drive.ssdWearStatus, 0);
}

TEST_F(AskedPages, EveryStatusOfADisk)
{
    addDisk(1);
    struct {
        const char* ready;
        int asc, ascq, used, status;
    } const cases[] = {{"ready", 0, 0, 0, 2},
                       {"ready", 0x5D, 0x10, 0, 3},
                       {"ready", 0x5D, 0xFF, 0, 2},
                       {"ready", 0x0B, 0x01, 0, 12},
                       {"ready", 0, 0, 100, 10},
                       {"asleep", 0x5D, 0, 0, 2},
                       {"not ready", 0x5D, 0, 0, 6},
                       {"no connect", 0, 0, 0, 7},
                       {"denied", 0, 0, 0, 0},
                       {"hung", 0, 0, 0, 0},
                       {"", 0, 0, 0, 0}};
    for (const auto& one : cases) {
        health(one.asc, one.ascq, one.used);
        sysfs.page("0:0:0:0", "ready", one.ready);
        EXPECT_EQ(LiveRecords(sysfs).drives().at(0)->status, one.status)
            << one.ready << " " << one.asc << " " << one.used;
    }
}

TEST_F(AskedPages, AnEnclosureThatTheKernelsDriverPassedOver)
{
    const std::string port = sysfs.addPort(host, "port-0:1", {4});
    FakeDisk disk;
    disk.parent = "port-0:1/expander-0:0/port-0:0:2";
    disk.endDevice = "end_device-0:0:2";
    disk.phy = "2";
    sysfs.addExpander(port, "expander-0:0", "0x500a098000005000");
    sysfs.addDisk(host, disk);
    FakeDisk ses;
    ses.type = "13";
    ses.address = "0:0:1:0";
    ses.block = "";
    ses.vendor = "GLOBEX";
    ses.model = "SHELF 24";
    ses.revision = "0307";
    ses.serial = "GS24-0042";
    ses.rotation = 0;
    ses.wwid = "naa.500a098000005081";
    ses.parent = "port-0:1/expander-0:0/port-0:0:6";
    ses.endDevice = "end_device-0:0:6";
    sysfs.addDisk(host, ses);
    sysfs.page("0:0:0:0", "ready", "ready");
    sysfs.page("0:0:1:0", "ready", "ready");
    const std::vector<SesType> types{{SesElement::arrayDeviceSlot, 2},
                                     {SesElement::cooling, 1},
                                     {SesElement::powerSupply, 1},
                                     {SesElement::temperatureSensor, 1}};
    sysfs.page("0:0:1:0", "ses_01", sesConfiguration(types));
    const std::string ok = sesElement(SesCode::ok);
    sysfs.page("0:0:1:0", "ses_02",
               sesStatus(0x04, {{ok, sesElement(SesCode::critical)},
                                {sesElement(SesCode::nonCritical)},
                                {sesElement(SesCode::unrecoverable)},
                                {ok}}));
    sysfs.page("0:0:1:0", "ses_0a", sesPage(0x0A, 0, sesSlotDescriptor(1, 12, 0x5000a72001240001)));
    LiveRecords records(sysfs);
    ASSERT_EQ(records.boxes().size(), 1U);
    EXPECT_EQ(fieldsOf(*records.boxes()[0]),
              "boxNumber = 1\nmodel = SHELF 24\nfirmwareVersion = 0307\nmanufacturer = GLOBEX\nfanStatus = 3\n"
              "status = 3\ntemperatureStatus = 2\npowerStatus = 5\ndriveBays = 2\nserialNumber = GS24-0042\n"
              "name = Port 4 Box 1\n");
    ASSERT_EQ(records.drives().size(), 1U);
    EXPECT_EQ(textOf(records.drives()[0]->location), "Port 4 Box 1 Bay 12") << "the box knows the bay of the address";
    EXPECT_EQ(+records.drives()[0]->driveNumber, 1012U);
    EXPECT_EQ(records.drives()[0]->status, 4) << "its box says that it failed";
}

TEST_F(AskedPages, TheEnclosureClassSaysThatADiskFailed)
{
    const std::string device = addDisk(10000);
    health(0, 0, 0);
    FakeDisk ses;
    ses.type = "13";
    ses.address = "0:0:1:0";
    ses.block = "";
    ses.parent = "port-0:1";
    ses.endDevice = "end_device-0:1";
    sysfs.addPort(host, "port-0:1", {4});
    const std::string enclosure = sysfs.addEnclosure(sysfs.addDisk(host, ses), "0x500a098000005080", 2);
    sysfs.putInSlot(device, enclosure, "1");
    struct {
        const char *status, *fault;
        int expected;
    } const cases[] = {{"OK", "0", 2}, {"critical", "0", 4}, {"unrecoverable", "0", 4},
                       {"OK", "2", 2}, {"OK", "4", 4},       {"non-critical", "0", 2}};
    for (const auto& one : cases) {
        sysfs.file(enclosure + "/Slot #1, x/status", one.status);
        sysfs.file(enclosure + "/Slot #1, x/fault", one.fault);
        EXPECT_EQ(LiveRecords(sysfs).drives().at(0)->status, one.expected) << one.status << " " << one.fault;
    }
}

} // namespace
} // namespace KDV
