#include "instances/RaidText.h"

#include <map>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

TEST(RaidText, NamesTheFiveLevelsAndNoOther)
{
    const std::map<int, std::string> levels{
        {2, "RAID 0"}, {3, "RAID 1"}, {4, "RAID 0+1"}, {5, "RAID 5"}, {6, "RAID 1+5"}};
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(raidText(static_cast<std::uint8_t>(code)), levels.count(code) ? levels.at(code) : "No RAID") << code;
}

// The two masks hold the bits of the levels with one and with two copies of the data.
TEST(RaidText, HasTheDataRedundancyOfTheLevelMasks)
{
    constexpr unsigned single = 164, doubled = 88;
    for (unsigned code = 0; code < 256; ++code) {
        const auto redundancy = raidRedundancy[static_cast<std::uint8_t>(code)];
        std::optional<std::uint16_t> expected;
        if (code < 32 && (single >> code & 1) != 0) expected = std::uint16_t(1);
        if (code < 32 && (doubled >> code & 1) != 0) expected = std::uint16_t(2);
        EXPECT_EQ(redundancy.dataRedundancy, expected) << code;
        EXPECT_EQ(redundancy.noSinglePointOfFailure.has_value(), expected.has_value()) << code;
        EXPECT_EQ(redundancy.packageRedundancy.has_value(), expected.has_value()) << code;
        EXPECT_EQ(redundancy.faultTolerance.has_value(), expected.has_value() && code != 7) << code;
    }
}

TEST(RaidText, WritesVolumeNumbersUnsigned)
{
    EXPECT_EQ(volumeElementText(0), "Logical Volume 0");
    EXPECT_EQ(volumeElementText(4294967295u), "Logical Volume 4294967295");
    EXPECT_EQ(volumeDeviceText(1), "StorageVolume:1"); // no blank behind the colon
    EXPECT_EQ(volumeDeviceText(4294967295u), "StorageVolume:4294967295");
}

} // namespace
} // namespace KDV::Test
