// Adapters that go while the process runs, and come back.
#include "LiveRecords.h"
#include "PageBytes.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

FakeHba adapter(unsigned host, const std::string& serial = "SP91542000")
{
    FakeHba hba;
    hba.host = host;
    hba.attributes = {{"board_name", "ZX9300-8e"}, {"board_tracer", serial}};
    return hba;
}

FakeDisk diskOf(unsigned host)
{
    const std::string number = std::to_string(host);
    FakeDisk disk;
    disk.address = number + ":0:0:0";
    disk.parent = "port-" + number + ":4";
    disk.endDevice = "end_device-" + number + ":4";
    return disk;
}

void removeEverything(FakeSysfs& sysfs)
{
    for (const char* folder : {"class", "block", "bus", "devices"})
        sysfs.remove(folder);
}

TEST(AnAdapterThatGoes, StaysAsOneThatFailedWithNothingBehindIt)
{
    FakeSysfs sysfs;
    sysfs.addDisk(sysfs.addHba(adapter(0)), diskOf(0));
    LiveRecords records(sysfs);
    const SasHbaRecord* before = &records.hba();
    ASSERT_EQ(records.drives().size(), 1U);

    removeEverything(sysfs);
    records.refresh();
    ASSERT_EQ(records.hbas().size(), 1U) << "who is told of none never looks again";
    EXPECT_EQ(&records.hba(), before);
    EXPECT_EQ(fieldsOf(records.hba()), "logicalLocation = PCI 0000:01:00.0\nslotNumber = 255\nmodelCode = 2\n"
                                       "arraySystemStatus = 4\ncontrollerStatus = 3\nname = ZX9300-8e SP91542000\n");
    EXPECT_TRUE(records.drives().empty());
}

TEST(AnAdapterThatGoes, IsTheSameWhenItComesBackUnderAnotherNumberOfTheKernels)
{
    FakeSysfs sysfs;
    sysfs.addDisk(sysfs.addHba(adapter(0)), diskOf(0));
    LiveRecords records(sysfs);
    const SasHbaRecord* before = &records.hba();
    const auto numbers = records.driveNumbers();

    removeEverything(sysfs);
    records.refresh();
    sysfs.addDisk(sysfs.addHba(adapter(3)), diskOf(3));
    records.refresh();
    ASSERT_EQ(records.hbas().size(), 1U);
    EXPECT_EQ(&records.hba(), before);
    EXPECT_EQ(+records.hba().hbaNumber, 0U);
    EXPECT_EQ(records.hba().controllerStatus, 2);
    ASSERT_EQ(records.driveNumbers(), numbers);
    EXPECT_EQ(+records.drives().at(0)->hbaNumber, 0U);
}

TEST(AnAdapterThatGoes, GivesItsNumberToAnotherOneThatTakesIt)
{
    FakeSysfs sysfs;
    sysfs.addHba(adapter(0));
    LiveRecords records(sysfs);
    removeEverything(sysfs);
    sysfs.addHba(adapter(0, "ANOTHER"));
    records.refresh();
    ASSERT_EQ(records.hbas().size(), 1U);
    EXPECT_EQ(textOf(records.hba().name), "ZX9300-8e ANOTHER");
    EXPECT_EQ(records.hba().controllerStatus, 2);
}

TEST(AnAdapterThatGoes, DoesNotTouchTheOthers)
{
    FakeSysfs sysfs;
    sysfs.addHba(adapter(0));
    FakeHba second = adapter(1, "SECOND");
    second.pci = "pci0000:00/0000:00:02.0/0000:02:00.0";
    sysfs.addDisk(sysfs.addHba(second), diskOf(1));
    LiveRecords records(sysfs);
    sysfs.remove("class/scsi_host/host0");
    sysfs.remove("class/sas_host/host0");
    records.refresh();
    ASSERT_EQ(records.hbas().size(), 2U);
    for (const SasHbaRecord* hba : records.hbas())
        EXPECT_EQ(hba->controllerStatus, +hba->hbaNumber == 0 ? 3 : 2);
}

TEST(ABoxThatGoes, IsNoLongerWellForWhoStillHasItsRecord)
{
    FakeSysfs sysfs;
    const std::string host = sysfs.addHba(adapter(0));
    FakeDisk ses = diskOf(0);
    ses.type = "13";
    ses.block = "";
    sysfs.addDisk(host, ses);
    sysfs.page("0:0:0:0", "ready", "ready");
    sysfs.page("0:0:0:0", "ses_01", sesConfiguration({{SesElement::cooling, 1}}));
    sysfs.page("0:0:0:0", "ses_02", sesStatus(0, {{sesElement(SesCode::ok)}}));
    LiveRecords records(sysfs);
    ASSERT_EQ(records.boxes().size(), 1U);
    const SasStorageBoxRecord* box = records.boxes()[0];
    ASSERT_EQ(box->fanStatus, 2);
    ASSERT_EQ(box->status, 2);

    removeEverything(sysfs);
    sysfs.addHba(adapter(0));
    records.refresh();
    ASSERT_TRUE(records.boxes().empty());
    EXPECT_EQ(box->fanStatus, 0);
    EXPECT_EQ(box->status, 0);
}

} // namespace
} // namespace KDV
