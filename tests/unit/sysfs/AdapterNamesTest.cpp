// The names of adapters: from what each driver offers, unlike each other, and the same for good.
#include "LiveRecords.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

TEST(AdapterNames, HaveNameAndFirmwareFromWhatTheirDriverOffers)
{
    using Attributes = std::vector<std::pair<std::string, std::string>>;
    struct {
        const char* driver;
        Attributes attributes;
        const char *name, *firmware;
    } const cases[] = {
        {"pm80xx",
         {{"fw_version", "02.14.00.00"}, {"host_sas_address", "0x500e004aaaaaaa00"}},
         "pm80xx 500E004AAAAAAA00",
         "02.14.00.00"},
        {"aic94xx", {{"aic_revision", "8"}, {"pcba_sn", "0A01234567890"}}, "aic94xx 0A01234567890", ""},
        {"mvsas", {{"driver_version", "0.8.16"}}, "mvsas 0000:01:00.0", ""},
        {"mpt2sas",
         {{"board_name", "ZX 9207  "}, {"board_tracer", "   "}, {"host_sas_address", "0x500605b0000000f0"}},
         "ZX 9207 500605B0000000F0",
         ""},
        {"mpi3mr", {{"version_fw", "8.0.0.61"}}, "mpi3mr 0000:01:00.0", "8.0.0.61"},
        {"hpsa", {{"firmware_revision", "8.32"}}, "hpsa 0000:01:00.0", "8.32"},
        {"megaraid_sas", {{"unique_id", "256"}}, "megaraid_sas 0000:01:00.0", ""},
    };
    for (const auto& one : cases) {
        FakeSysfs sysfs;
        FakeHba hba;
        hba.driver = one.driver;
        hba.transport = false;
        hba.attributes = one.attributes;
        sysfs.addHba(hba);
        LiveRecords records(sysfs);
        ASSERT_EQ(records.hbas().size(), 1U) << one.driver;
        EXPECT_EQ(textOf(records.hba().name), one.name);
        EXPECT_EQ(textOf(records.hba().firmwareVersion), one.firmware) << one.driver;
    }
}

TEST(AdapterNames, HaveTheNameOfTheirDeviceWhereTheDriverHasNotSetItsOwn)
{
    for (const char* unset : {"(null)", "<NULL>", ""}) {
        FakeSysfs sysfs;
        FakeHba hba;
        hba.driver = unset;
        const std::string host = sysfs.addHba(hba);
        sysfs.link("devices/" + hba.pci + "/driver", "bus/pci/drivers/mvsas");
        sysfs.remove("class/sas_host");
        sysfs.remove(host + "/sas_host");
        LiveRecords records(sysfs);
        ASSERT_EQ(records.hbas().size(), 1U) << unset;
        EXPECT_EQ(textOf(records.hba().name), "mvsas 0000:01:00.0") << unset;
    }
}

TEST(AdapterNames, ThatAreNoPciFunctionHaveTheNameOfTheirPlatformDevice)
{
    FakeSysfs sysfs;
    sysfs.addHba({3, "platform/HISI0162:01", "hisi_sas_v2_hw", "running", true, {}});
    LiveRecords records(sysfs);
    ASSERT_EQ(records.hbas().size(), 1U);
    EXPECT_EQ(fieldsOf(records.hba()), "hbaNumber = 3\nslotNumber = 255\nmodelCode = 2\narraySystemStatus = 2\n"
                                       "controllerStatus = 2\nname = hisi_sas_v2_hw HISI0162:01\n");
}

TEST(AdapterNames, AreFoundInATreeWithoutTheClassOfScsiHosts)
{
    FakeSysfs sysfs;
    FakeHba hba;
    hba.attributes = {{"board_name", "ZX"}, {"board_tracer", "SP1"}, {"version_fw", "16"}};
    const std::string host = sysfs.addHba(hba);
    sysfs.remove("class/scsi_host");
    EXPECT_EQ(textOf(LiveRecords(sysfs).hba().name), "ZX SP1");
    sysfs.remove("class/sas_host");
    sysfs.link("bus/scsi/devices/host0", host);
    sysfs.link("bus/scsi/devices/0:0:0:0", host + "/target0:0:0/0:0:0:0");
    LiveRecords records(sysfs);
    ASSERT_EQ(records.hbas().size(), 1U);
    EXPECT_EQ(textOf(records.hba().name), "ZX SP1");
    EXPECT_EQ(textOf(records.hba().firmwareVersion), "16");
    EXPECT_EQ(records.hba().controllerStatus, 2);
}

TEST(AdapterNames, OfOneNameAreToldApartByTheirAddresses)
{
    FakeSysfs sysfs;
    for (unsigned i = 0; i < 3; ++i) {
        FakeHba hba;
        hba.host = i;
        hba.pci = "pci0000:00/0000:0" + std::to_string(i + 1) + ":00.0";
        hba.attributes = {{"board_name", "ZX"}, {"board_tracer", i < 2 ? "SP1" : "SP2"}};
        sysfs.addHba(hba);
    }
    LiveRecords records(sysfs);
    EXPECT_EQ(textOf(records.hba(0).name), "ZX SP1 0000:01:00.0");
    EXPECT_EQ(textOf(records.hba(1).name), "ZX SP1 0000:02:00.0");
    EXPECT_EQ(textOf(records.hba(2).name), "ZX SP2");
}

TEST(AdapterNames, WithoutASerialNumberHaveTheirSasAddressForIt)
{
    for (const char* unwritten : {"", "   ", "0000000000", "\xFF\xFF\xFF\xFF", "0\x01"}) {
        FakeSysfs sysfs;
        FakeHba hba;
        hba.attributes = {{"board_name", "ZX"}, {"board_tracer", unwritten}, {"host_sas_address", "0x0"}};
        const std::string host = sysfs.addHba(hba);
        sysfs.file(host + "/phy-0:0/sas_phy/phy-0:0/sas_address", "0x500605b000998800\n");
        EXPECT_EQ(textOf(LiveRecords(sysfs).hba().name), "ZX 500605B000998800") << unwritten;
    }
}

TEST(AdapterNames, KeepWhatTellsThemApartWhenTheirModelIsLong)
{
    FakeSysfs sysfs;
    FakeHba hba;
    hba.attributes = {{"board_name", std::string(200, 'M')}, {"board_tracer", "SP91542000"}};
    sysfs.addHba(hba);
    EXPECT_EQ(textOf(LiveRecords(sysfs).hba().name), std::string(75, 'M') + " SP91542000");
}

TEST(AdapterNames, StayWhenAnotherAdapterComes)
{
    FakeSysfs sysfs;
    FakeHba hba;
    hba.attributes = {{"board_name", "ZX"}, {"board_tracer", "SP1"}};
    sysfs.addHba(hba);
    LiveRecords records(sysfs);
    ASSERT_EQ(textOf(records.hba().name), "ZX SP1");
    hba.host = 1;
    hba.pci = "pci0000:00/0000:09:00.0";
    sysfs.addHba(hba);
    records.refresh();
    ASSERT_EQ(records.hbas().size(), 2U);
    EXPECT_EQ(textOf(records.hba(0).name), "ZX SP1") << "clients keep it as a key";
    EXPECT_EQ(textOf(records.hba(1).name), "ZX SP1 0000:09:00.0");
}

} // namespace
} // namespace KDV
