// Drives: one record for a disk however many ways lead to it, numbers that stay, and values that must not be cut.
#include "LiveRecords.h"
#include "sashba/sysfs/Numbering.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

FakeDisk diskAt(unsigned target, const std::string& wwidDigit = "")
{
    const std::string n = std::to_string(target);
    FakeDisk disk;
    disk.address = "0:0:" + n + ":0";
    disk.block = std::string("sd") + static_cast<char>('a' + target % 26);
    disk.generic = "sg" + n;
    disk.serial = "SP-" + (wwidDigit.empty() ? n : wwidDigit);
    disk.wwid = "naa.5000a720012400" + std::string(wwidDigit.empty() && target < 10 ? "0" : "") +
                (wwidDigit.empty() ? n : "f" + wwidDigit);
    disk.parent = "port-0:" + n;
    disk.endDevice = "end_device-0:" + n;
    return disk;
}

class LiveDrives : public testing::Test {
protected:
    LiveDrives() { host = sysfs.addHba({}); }

    // Attached to the phy; the kernel's own numbers go on counting.
    std::string attach(unsigned phy, FakeDisk disk, unsigned kernelNumber)
    {
        const std::string n = std::to_string(kernelNumber);
        disk.address = "0:0:" + n + ":0";
        disk.parent = "port-0:" + n;
        disk.endDevice = "end_device-0:" + n;
        sysfs.addPort(host, disk.parent, {phy});
        return sysfs.addDisk(host, disk);
    }

    FakeSysfs sysfs;
    std::string host;
};

TEST_F(LiveDrives, AreThereOnceWithTwoWaysThroughTwoExpanders)
{
    for (const char* side : {"0", "1"}) {
        const std::string port = sysfs.addPort(host, std::string("port-0:") + side, {*side == '0' ? 0U : 4U});
        sysfs.addExpander(port, std::string("expander-0:") + side, std::string("0x500a09800000600") + side);
        FakeDisk disk = diskAt(*side == '0' ? 0 : 1);
        disk.wwid = "naa.5000a72001240000";
        disk.serial = "SP0001";
        disk.sasAddress = std::string("0x5000a7200124000") + (*side == '0' ? "1" : "2");
        disk.parent = std::string("port-0:") + side + "/expander-0:" + side + "/port-0:" + side + ":3";
        disk.endDevice = std::string("end_device-0:") + side + ":3";
        disk.phy = "3";
        sysfs.addDisk(host, disk);
    }
    LiveRecords records(sysfs);
    EXPECT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{1003}));
    EXPECT_EQ(textOf(records.drives()[0]->osName), "/dev/sda");
    EXPECT_EQ(records.boxes().size(), 2U);
}

TEST_F(LiveDrives, AreThereOnceWithWaysThroughTwoAdapters)
{
    const std::string other = sysfs.addHba({1, "pci0000:00/0000:00:02.0/0000:02:00.0", "mpt3sas", "running", true, {}});
    attach(2, diskAt(0), 0);
    FakeDisk disk = diskAt(0);
    disk.address = "1:0:0:0";
    disk.block = "sdz";
    disk.parent = "port-1:0";
    disk.endDevice = "end_device-1:0";
    sysfs.addPort(other, "port-1:0", {6});
    sysfs.addDisk(other, disk);
    LiveRecords records(sysfs);
    EXPECT_EQ(records.driveNumbers(0), (std::vector<std::uint32_t>{2}));
    EXPECT_TRUE(records.driveNumbers(1).empty());
}

TEST_F(LiveDrives, FindTheirNumberAndRecordAgainAfterARePlug)
{
    const std::string first = attach(3, diskAt(0), 0);
    attach(5, diskAt(1), 1);
    LiveRecords records(sysfs);
    ASSERT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{3, 5}));
    const SasPhysicalDriveRecord* record = records.drives()[0];
    sysfs.removeDisk(first);
    records.refresh();
    EXPECT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{5}));
    attach(3, diskAt(0), 8); // the kernel calls it by other names now
    records.refresh();
    EXPECT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{3, 5}));
    EXPECT_EQ(records.drives()[0], record);
    EXPECT_EQ(LiveRecords(sysfs).driveNumbers(), records.driveNumbers()) << "and after a restart too";
}

TEST_F(LiveDrives, SwappedBetweenTwoRefreshesShowAsAPullAndAnInsert)
{
    const std::string first = attach(3, diskAt(0), 0);
    LiveRecords records(sysfs);
    sysfs.removeDisk(first);
    FakeDisk another = diskAt(1);
    another.serial = "ANOTHER";
    attach(3, another, 1);
    records.refresh();
    EXPECT_TRUE(records.drives().empty()) << "the old one went";
    EXPECT_EQ(records.reports->passesWanted, 1) << "and the new one does not wait for the next poll";
    records.refresh();
    ASSERT_EQ(records.driveNumbers(), (std::vector<std::uint32_t>{3}));
    EXPECT_EQ(textOf(records.drives()[0]->serialNumber), "ANOTHER");
    EXPECT_EQ(records.reports->passesWanted, 1);
}

TEST_F(LiveDrives, WithOnePlaceClaimedTwiceHaveTwoNumbers)
{
    attach(3, diskAt(0), 0);
    attach(3, diskAt(1), 1);
    LiveRecords records(sysfs);
    const std::vector<std::uint32_t> numbers = records.driveNumbers();
    ASSERT_EQ(numbers.size(), 2U);
    EXPECT_EQ(numbers[0], 3U);
    EXPECT_GE(numbers[1], 1000000U);
    EXPECT_EQ(LiveRecords(sysfs).driveNumbers(), numbers) << "the same ones in another process";
}

TEST_F(LiveDrives, SayTheirSizeInBlocksThatFit)
{
    struct {
        unsigned long long sectors;
        unsigned logical, physical;
        std::uint32_t size, blockSize, blocks;
    } const cases[] = {
        {1172123568, 512, 512, 572325, 512, 1172123568},
        {7814037168, 512, 4096, 3815447, 4096, 976754646}, // does not fit in the small blocks
        {7814037168, 4096, 4096, 3815447, 4096, 976754646},
        {7814037168, 512, 512, 3815447, 512, 0}, // does not fit at all: not told rather than wrong
        {0, 512, 512, 0, 512, 0},
        {18446744073709551615ULL, 512, 512, 0, 0, 0}, // no size
        {4294967295, 520, 520, 2097151, 520, 0},
    };
    for (const auto& one : cases) {
        FakeSysfs own;
        const std::string ownHost = own.addHba({});
        FakeDisk disk = diskAt(0);
        disk.sectors = one.sectors;
        disk.logicalBlock = one.logical;
        disk.physicalBlock = one.physical;
        own.addDisk(ownHost, disk);
        const LiveRecords records(own);
        const SasPhysicalDriveRecord& drive = *records.drives().at(0);
        EXPECT_EQ(+drive.size, one.size) << one.sectors;
        EXPECT_EQ(+drive.blockSize, one.blockSize) << one.sectors;
        EXPECT_EQ(+drive.blockCount, one.blocks) << one.sectors;
    }
}

TEST_F(LiveDrives, HaveTheSpeedCodeOfTheirRevolutions)
{
    const std::pair<unsigned, int> cases[] = {{7200, 2},  {7202, 2},  {10000, 3}, {10500, 3}, {10520, 3},
                                              {15000, 4}, {15030, 4}, {5400, 0},  {0, 0},     {65535, 0}};
    for (const auto& [rotation, code] : cases) {
        FakeSysfs own;
        FakeDisk disk = diskAt(0);
        disk.rotation = rotation;
        own.addDisk(own.addHba({}), disk);
        const LiveRecords records(own);
        EXPECT_EQ(records.drives().at(0)->rotationalSpeed, code) << rotation;
        EXPECT_EQ(records.drives().at(0)->mediaType, 0) << rotation;
    }
}

TEST_F(LiveDrives, HavePrintableTextsAndNoCutDeviceName)
{
    FakeDisk disk = diskAt(0);
    disk.vendor = "A\x01\xFF#B";
    disk.model = std::string(100, 'M');
    disk.serial = "S\n\t1";
    disk.block = "sdabcdefghijkl";
    disk.wwid = "t10.ATA     a name of another form";
    attach(0, disk, 0);
    LiveRecords records(sysfs);
    const SasPhysicalDriveRecord& drive = *records.drives().at(0);
    EXPECT_EQ(textOf(drive.inquiry), "A??#B   " + std::string(32, 'M'));
    EXPECT_EQ(textOf(drive.serialNumber), "S??1");
    EXPECT_EQ(textOf(drive.osName), "") << "a shorter one would be another device";
    EXPECT_EQ(textOf(drive.name), "5000A72001240001");
}

TEST_F(LiveDrives, WhoseVendorFillsItsFieldKeepABlankBeforeTheModel)
{
    FakeDisk disk = diskAt(0);
    disk.vendor = "ACMEDISK";
    attach(0, disk, 0);
    LiveRecords records(sysfs);
    EXPECT_EQ(textOf(records.drives().at(0)->inquiry), "ACMEDISK SPINDLE 600") << "it is split at the blank";
}

TEST_F(LiveDrives, AreUnknownNotOkWhenNobodyAskedThem)
{
    attach(0, diskAt(0), 0);
    LiveRecords records(sysfs);
    EXPECT_EQ(records.drives().at(0)->status, 0);
}

TEST_F(LiveDrives, ThatTheKernelTookOfflineHaveFailed)
{
    const std::string device = attach(0, diskAt(0), 0);
    sysfs.page("0:0:0:0", "ready", "ready");
    LiveRecords records(sysfs);
    EXPECT_EQ(records.drives().at(0)->status, 2);
    sysfs.file(device + "/state", "offline\n");
    records.refresh();
    EXPECT_EQ(records.drives().at(0)->status, 5);
    sysfs.file(device + "/state", "blocked\n");
    records.refresh();
    EXPECT_EQ(records.drives().at(0)->status, 0);
}

TEST_F(LiveDrives, KnowTheWholeNameOfTheirFirmwareFromTheAtaPage)
{
    std::string page(572, '\0');
    page[1] = '\x89';
    const std::string firmware = "FSA02106"; // in words with the low byte first
    for (std::size_t i = 0; i < 8; i += 2) {
        page[60 + 46 + i] = firmware[i + 1];
        page[60 + 46 + i + 1] = firmware[i];
    }
    const std::string device = attach(0, diskAt(0), 0);
    sysfs.file(device + "/vpd_pg89", page);
    LiveRecords records(sysfs);
    EXPECT_EQ(textOf(records.drives().at(0)->firmwareRevision), firmware);
    EXPECT_EQ(records.drives().at(0)->interface, 1);
}

TEST(DriveNumbering, GivesANumberOfAPlaceThatIsLearnedLateToNobodyWhoHasOne)
{
    DriveNumbering numbering;
    const auto early = numbering.assign({{"naa.1", std::nullopt}});
    ASSERT_TRUE(early.at(0));
    EXPECT_EQ(numbering.assign({{"naa.1", 1005}}), early);
}

TEST(DriveNumbering, CorrectsAGuessWhenTheBoxHasToldTheBay)
{
    using Numbers = std::vector<std::optional<std::uint32_t>>;
    DriveNumbering numbering;
    EXPECT_EQ(numbering.assign({{"naa.1", 1000}, {"naa.2", 1004}}), (Numbers{1000, 1004}));
    EXPECT_EQ(numbering.assign({{"naa.1", 1001, true}, {"naa.2", 1004, true}}), (Numbers{std::nullopt, 1004}))
        << "it goes,";
    EXPECT_TRUE(numbering.waiting());
    EXPECT_EQ(numbering.assign({{"naa.1", 1001, true}, {"naa.2", 1004, true}}), (Numbers{1001, 1004}))
        << "and comes with the right one";
    EXPECT_FALSE(numbering.waiting());
    EXPECT_EQ(numbering.assign({{"naa.1", 1007, true}, {"naa.2", 1004, true}}), (Numbers{1001, 1004}))
        << "what a box has told once stays";
    EXPECT_EQ(numbering.assign({{"naa.1", 1001}, {"naa.2", 1004}, {"naa.3", 1002}}), (Numbers{1001, 1004, 1002}));
    EXPECT_EQ(numbering.assign({{"naa.1", 1001}, {"naa.2", 1004}, {"naa.3", 1004, true}}), (Numbers{1001, 1004, 1002}))
        << "a number that another one has is no better";
}

TEST(DriveNumbering, CorrectsARowOfGuessesThatAreInEachOthersWay)
{
    DriveNumbering numbering;
    numbering.assign({{"naa.1", 1000}, {"naa.2", 1001}, {"naa.3", 1002}});
    const std::vector<NumberWish> told = {{"naa.1", 1001, true}, {"naa.2", 1002, true}, {"naa.3", 1003, true}};
    std::vector<std::optional<std::uint32_t>> numbers;
    int passes = 0;
    do {
        numbers = numbering.assign(told);
        ++passes;
    } while (numbering.waiting() && passes < 10);
    EXPECT_EQ(numbers, (std::vector<std::optional<std::uint32_t>>{1001, 1002, 1003}));
    EXPECT_LT(passes, 10);
}

TEST(DriveNumbering, HasNoNumberForAPlaceThatIsNone)
{
    EXPECT_EQ(numberByPlace(2, 7), 2007U);
    EXPECT_EQ(numberByPlace(0, 999), 999U);
    EXPECT_EQ(numberByPlace(1, 1000), std::nullopt);
    EXPECT_EQ(numberByPlace(1, ~std::uint64_t{0}), std::nullopt);
}

TEST(BoxNumbering, KeepsNumbersAndFillsGapsAndEnds)
{
    BoxNumbering numbering;
    EXPECT_EQ(numbering.assign({"a"}, std::uint8_t{2}), 2);
    EXPECT_EQ(numbering.assign({"b"}, std::nullopt), 1);
    EXPECT_EQ(numbering.assign({"c"}, std::uint8_t{2}), 3);
    numbering.beginRound();
    EXPECT_EQ(numbering.assign({"a"}, std::uint8_t{9}), 2);
    for (int i = 4; i <= 254; ++i)
        EXPECT_EQ(numbering.assign({"box " + std::to_string(i)}, std::nullopt), i);
    EXPECT_EQ(numbering.assign({"one too many"}, std::nullopt), std::nullopt);
}

TEST(BoxNumbering, KnowsABoxByAnyOfItsNames)
{
    BoxNumbering numbering;
    EXPECT_EQ(numbering.assign({"expander 1"}, std::nullopt), 1);
    EXPECT_EQ(numbering.assign({"expander 2"}, std::nullopt), 2);
    EXPECT_EQ(numbering.assign({"expander 3"}, std::nullopt), 3);
    numbering.beginRound(); // 1 and 3 turn out to be one box
    EXPECT_EQ(numbering.assign({"enclosure A", "expander 1", "expander 3"}, std::nullopt), 1);
    EXPECT_EQ(numbering.assign({"expander 2"}, std::nullopt), 2);
    EXPECT_EQ(numbering.assign({"expander 4"}, std::nullopt), 3) << "nobody has the number any more";
    numbering.beginRound(); // it comes back in another order, under a name more
    EXPECT_EQ(numbering.assign({"expander 3"}, std::nullopt), 1);
    numbering.beginRound();
    EXPECT_EQ(numbering.assign({"enclosure B", "enclosure A"}, std::nullopt), 1);
}

TEST(BoxNumbering, TellsBoxesApartThatHaveTheSameName)
{
    BoxNumbering numbering;
    for (int round = 0; round < 2; ++round) {
        numbering.beginRound();
        EXPECT_EQ(numbering.assign({"processor 1", "enclosure 5000"}, std::nullopt), 1) << round;
        EXPECT_EQ(numbering.assign({"processor 2", "enclosure 5000"}, std::nullopt), 2) << round;
    }
}

} // namespace
} // namespace KDV
