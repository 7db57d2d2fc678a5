// What is read of a capture is what is read of the machine.
#include "ExampleMachine.h"
#include "capture/Anonymous.h"
#include "capture/SecretFinder.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KdvSas {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;

std::string nameOf(const std::string& line) { return line.substr(0, line.find(" = ")); }

class CapturedRecords : public testing::Test {
protected:
    CapturedRecords() { buildExampleMachine(machine); }

    std::vector<std::string> linesOf(const std::vector<CapturedEntry>& entries)
    {
        const KDV::FakeSysfs unpacked;
        unpack(entries, unpacked);
        return recordLines(KDV::LiveRecords(unpacked));
    }

    KDV::FakeSysfs machine;
};

TEST_F(CapturedRecords, AreTheOnesOfTheMachine)
{
    const KDV::LiveRecords live(machine);
    ASSERT_EQ(live.hbas().size(), 2U);
    ASSERT_THAT(live.drives(), SizeIs(3)) << "the drive with two ports is one";
    const std::vector<std::string> lines = recordLines(live);
    ASSERT_THAT(lines, AllOf(Contains("serialNumber = K1GXYZ8D"), Contains("location = Port 0 Box 1 Bay 24"),
                             Contains(HasSubstr("fanStatus = 5")), Contains("serialNumber = ENC000123X"),
                             Contains("memberCount = 2")));
    EXPECT_EQ(linesOf(captureOf(machine).captured.entries), lines);
}

TEST_F(CapturedRecords, DifferInReplacedTextsAlone)
{
    const std::vector<std::string> lines = recordLines(KDV::LiveRecords(machine));
    Captured captured = captureOf(machine).captured;
    makeAnonymous(captured, secretsOf(captured.entries), systemRandom());
    const std::vector<std::string> other = linesOf(captured.entries);
    ASSERT_EQ(other.size(), lines.size());
    std::size_t replaced = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i] == other[i]) continue;
        ++replaced;
        EXPECT_THAT(nameOf(lines[i]), testing::AnyOf("name", "serialNumber")) << lines[i];
        EXPECT_EQ(nameOf(other[i]), nameOf(lines[i]));
        EXPECT_EQ(other[i].size(), lines[i].size()) << lines[i];
    }
    const auto secret = std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
        return nameOf(line) == "serialNumber" || (nameOf(line) == "name" && line.find("Port ") == std::string::npos);
    });
    EXPECT_EQ(replaced, static_cast<std::size_t>(secret));
    EXPECT_GE(replaced, 11U);
}

TEST_F(CapturedRecords, AreTheSameOfACaptureOfACapture)
{
    Captured captured = captureOf(machine).captured;
    makeAnonymous(captured, secretsOf(captured.entries), systemRandom());
    const KDV::FakeSysfs unpacked;
    unpack(captured.entries, unpacked);
    const MachineCapture again = captureOf(unpacked);
    EXPECT_EQ(again.adapters, 2U);
    ASSERT_EQ(again.captured.entries.size(), captured.entries.size());
    for (const CapturedEntry& entry : captured.entries) {
        EXPECT_THAT(again.captured.entries,
                    Contains(testing::AllOf(testing::Field(&CapturedEntry::path, entry.path),
                                            testing::Field(&CapturedEntry::content, entry.content))));
    }
}

TEST_F(CapturedRecords, LeaveOutWhatIsNotBehindASasAdapter)
{
    const MachineCapture made = captureOf(machine);
    const auto has = [&made](const std::string& part) {
        return std::any_of(made.captured.entries.begin(), made.captured.entries.end(), [&part](const CapturedEntry& e) {
            return e.path.find(part) != std::string::npos || e.content.find(part) != std::string::npos;
        });
    };
    EXPECT_TRUE(has("host7/proc_name")) << "what other hosts there are explains what is missing";
    EXPECT_FALSE(has("7:0:0:0"));
    EXPECT_FALSE(has("BOOTDISK42"));
    EXPECT_TRUE(has("sys/class/sas_expander/expander-0:0"));
    EXPECT_FALSE(has("sys/class/block/sdz"));
    EXPECT_TRUE(has("sys/module/mpt3sas/version"));
    EXPECT_TRUE(has("sys/devices/virtual/dmi/id/product_name"));
    EXPECT_FALSE(has("product_serial"));
    EXPECT_FALSE(has("dm/uuid"));
}

TEST_F(CapturedRecords, OfAMachineWithoutAnAdapterHaveAllHosts)
{
    KDV::FakeSysfs bare;
    KDV::FakeHba hba;
    hba.driver = "newdriver";
    hba.transport = false;
    KDV::FakeDisk disk;
    disk.serial = "K1GXYZ8D";
    bare.addDisk(bare.addHba(hba), disk);
    const MachineCapture made = captureOf(bare);
    EXPECT_EQ(made.adapters, 0U);
    EXPECT_THAT(made.captured.entries, Contains(testing::Field(&CapturedEntry::path, HasSubstr("0:0:0:0/vpd_pg80"))));
}

} // namespace
} // namespace KdvSas
