// Where records lie and whose they are.
#include "Playground.h"
#include "sashba/KeptBytes.h"
#include "sashba/LowMemory.h"

#include <cstdint>
#include <cstring>
#include <set>

namespace KDV {
namespace {

bool liesBelow4GiB(const void* start, std::size_t bytes)
{
    return reinterpret_cast<std::uintptr_t>(start) + bytes <= std::uint64_t{1} << 32;
}

TEST(LowMemory, GivesZeroedPiecesBelow4GiBThatDoNotOverlap)
{
    LowMemory memory;
    char* before = nullptr;
    std::set<char*> pieces;
    for (int i = 0; i < 30000; ++i) { // several blocks
        char* piece = static_cast<char*>(memory.allocate(424));
        ASSERT_TRUE(liesBelow4GiB(piece, 424));
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(piece) % 16, 0U);
        ASSERT_EQ(piece[0], 0);
        ASSERT_EQ(piece[423], 0);
        std::memset(piece, 0xFF, 424);
        ASSERT_TRUE(pieces.insert(piece).second);
        before = piece;
    }
    ASSERT_NE(before, nullptr);
    for (auto it = pieces.begin(), next = std::next(it); next != pieces.end(); ++it, ++next)
        ASSERT_GE(*next - *it, 424);
}

TEST(LowMemory, TakesAPieceLargerThanABlock)
{
    LowMemory memory;
    char* piece = static_cast<char*>(memory.allocate(std::size_t{9} * 1024 * 1024));
    EXPECT_TRUE(liesBelow4GiB(piece, std::size_t{9} * 1024 * 1024));
    piece[std::size_t{9} * 1024 * 1024 - 1] = 1;
}

TEST(LowMemory, SaysSoWhenThereIsNone)
{
    LowMemory memory;
    EXPECT_THROW(memory.allocate(std::size_t{5} << 30), std::bad_alloc);
}

template <class Record>
void expectKept(std::set<std::size_t> offsets)
{
    Record record;
    Record image;
    std::memset(static_cast<void*>(&record), 0xAA, sizeof record);
    std::memset(static_cast<void*>(&image), 0x55, sizeof image);
    copyKeeping(record, image);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    for (std::size_t at = 0; at < sizeof record; ++at)
        ASSERT_EQ(bytes[at], offsets.count(at) ? 0xAA : 0x55) << at;
}

TEST(KeptBytes, AreTheLinksAndThoseOfTheProvider)
{
    expectKept<SasHbaRecord>({0, 1, 2, 3, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 165});
    expectKept<SasPhysicalDriveRecord>({0, 1, 2, 3, 20, 418});
    expectKept<SasLogicalDriveRecord>({0, 1, 2, 3, 27});
    expectKept<SasStorageBoxRecord>({0, 1, 2, 3, 231, 232, 233});
}

TEST(RecordTree, EveryRecordLiesBelow4GiBAndInTheOrderOfTheFile)
{
    std::string drives;
    for (int i = 0; i < 3000; ++i)
        drives += (i ? ", " : "") + std::string(R"({"driveNumber": )") + std::to_string((i * 7919) % 3001) + "}";
    const Playground play(oneHba("\"physicalDrives\": [" + drives + R"(], "logicalDrives": [{"logicalDriveNumber": 4},
        {"logicalDriveNumber": 2}], "storageBoxes": [{"boxNumber": 9}, {"boxNumber": 1}])"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    const auto numbers = play.driveNumbers();
    ASSERT_EQ(numbers.size(), 3000U);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        ASSERT_EQ(numbers[i], (i * 7919) % 3001);
    for (const SasPhysicalDriveRecord* drive : play.drives())
        ASSERT_TRUE(liesBelow4GiB(drive, sizeof *drive));
    EXPECT_TRUE(liesBelow4GiB(play.hba(), sizeof(SasHbaRecord)));
    EXPECT_TRUE(liesBelow4GiB(play.volumes().at(1), sizeof(SasLogicalDriveRecord)));
    EXPECT_TRUE(liesBelow4GiB(play.boxes().at(1), sizeof(SasStorageBoxRecord)));
    EXPECT_EQ(std::uint32_t{play.volumes().at(0)->logicalDriveNumber}, 4U);
    EXPECT_EQ(play.boxes().at(0)->boxNumber, 9);
}

TEST(RecordTree, DrivesWithOneNumberBehindTwoHbasAreTwoRecords)
{
    const Playground play(R"({"hbas": [{"hbaNumber": 0, "physicalDrives": [{"driveNumber": 1}]},
        {"hbaNumber": 1, "physicalDrives": [{"driveNumber": 1}]}]})");
    EXPECT_NE(play.drives(0).at(0), play.drives(1).at(0));
    EXPECT_EQ(std::uint32_t{play.drives(1).at(0)->hbaNumber}, 1U);
}

} // namespace
} // namespace KDV
