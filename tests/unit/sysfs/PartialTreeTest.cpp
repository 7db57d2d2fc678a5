// Captured trees that lack some of the kernel's lists: what one of them does not name is found by another, so that the
// records are the same.
#include "LiveRecords.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

// An adapter with an expander, an enclosure with a disk in it, a disk of its own, and an array of both.
class PartialTree : public testing::Test {
protected:
    PartialTree()
    {
        FakeHba hba;
        hba.attributes = {{"board_name", "ZX9300-8e"}, {"board_tracer", "SP91542000"}, {"version_fw", "16.00.12.00"}};
        const std::string host = sysfs.addHba(hba);
        const std::string port = sysfs.addPort(host, "port-0:0", {0});
        sysfs.addExpander(port, "expander-0:0", "0x500a098000005000");
        FakeDisk inBox;
        inBox.parent = "port-0:0/expander-0:0/port-0:0:1";
        inBox.endDevice = "end_device-0:0:1";
        const std::string device = addDisk(host, inBox);
        FakeDisk own;
        own.address = "0:0:2:0";
        own.block = "sdb";
        own.generic = "sg2";
        own.wwid = "naa.5000a72001240009";
        own.parent = "port-0:1";
        own.endDevice = "end_device-0:1";
        sysfs.addPort(host, own.parent, {5});
        const std::string second = addDisk(host, own);
        FakeDisk ses;
        ses.type = "13";
        ses.address = "0:0:1:0";
        ses.block = "";
        ses.generic = "sg1";
        ses.rotation = 0;
        ses.wwid = "naa.500a098000005081";
        ses.parent = "port-0:0/expander-0:0/port-0:0:2";
        ses.endDevice = "end_device-0:0:2";
        sysfs.putInSlot(device, sysfs.addEnclosure(addDisk(host, ses), "0x500a098000005080", 2), "1");
        const std::string md = sysfs.addMd("md0", "raid1", 2);
        sysfs.addMdMember(md, device, "sda", "0", "in_sync");
        sysfs.addMdMember(md, second, "sdb", "1", "in_sync");
        sysfs.link("class/block/md0", md.substr(0, md.rfind('/')));
        sysfs.link("bus/scsi/devices/host0", host);
    }

    // In every list that the kernel keeps.
    std::string addDisk(const std::string& host, const FakeDisk& disk)
    {
        std::string device = sysfs.addDisk(host, disk);
        sysfs.link("bus/scsi/devices/" + disk.address, device);
        sysfs.link("class/scsi_generic/" + disk.generic, device + "/scsi_generic/" + disk.generic);
        if (!disk.block.empty()) sysfs.link("class/block/" + disk.block, device + "/block/" + disk.block);
        return device;
    }

    std::string allRecords() const
    {
        const LiveRecords records(sysfs);
        std::string text;
        for (std::size_t i = 0; i < records.hbas().size(); ++i) {
            text += fieldsOf(records.hba(i));
            for (const auto* box : records.boxes(i))
                text += fieldsOf(*box);
            for (const auto* volume : records.volumes(i))
                text += fieldsOf(*volume);
            for (const auto* drive : records.drives(i))
                text += fieldsOf(*drive);
        }
        return text;
    }

    FakeSysfs sysfs;
};

TEST_F(PartialTree, GivesTheSameRecordsWhicheverListsAreMissing)
{
    const std::string whole = allRecords();
    EXPECT_NE(whole.find("location = Port 0 Box 1 Bay 1\n"), std::string::npos) << whole;
    EXPECT_NE(whole.find("location = Port 5 Device 5\n"), std::string::npos) << whole;
    EXPECT_NE(whole.find("driveBays = 2\n"), std::string::npos) << whole;
    EXPECT_NE(whole.find("members = 1001 5\n"), std::string::npos) << whole;
    for (const char* list : {"class/sas_host", "class/sas_expander", "class/enclosure", "class/scsi_device", "block",
                             "class/scsi_generic", "class/scsi_host"}) {
        sysfs.remove(list); // one after the other
        EXPECT_EQ(allRecords(), whole) << "without " << list << " and those before it";
    }
}

TEST_F(PartialTree, NeedsOnlyTheBusAndTheListOfBlockDevices)
{
    const std::string whole = allRecords();
    sysfs.remove("class");
    EXPECT_EQ(allRecords(), whole);
}

TEST_F(PartialTree, NeedsOnlyTheClassesWithoutThatOfDevices)
{
    const std::string whole = allRecords();
    sysfs.remove("bus");
    sysfs.remove("class/scsi_device");
    EXPECT_EQ(allRecords(), whole);
    sysfs.remove("class/scsi_generic");
    EXPECT_NE(allRecords().find("location = Port 0 Box 1 Bay 1\n"), std::string::npos);
}

} // namespace
} // namespace KDV
