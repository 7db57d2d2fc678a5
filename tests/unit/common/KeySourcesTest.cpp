#include "common/KeySources.h"

#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;
namespace KDV {
namespace {

DeclaredKeySources sources(const std::vector<DeclaredKeySources::Region>& regions)
{
    DeclaredKeySources declared;
    declared.regions = regions;
    return declared;
}

TEST(KeySources, NamesTheObjectsWhoseBytesChanged)
{
    char shared[4] = "abc";
    char own[2] = "x";
    const DeclaredKeySources both = sources({{shared, 4}, {own, 2}, {shared, 4}});
    const DeclaredKeySources one = sources({{shared, 4}});
    KeySources all;
    all.add(3, &both);
    all.add(5, &one);
    EXPECT_THAT(all.changed(), IsEmpty());
    own[0] = 'y';
    EXPECT_THAT(all.changed(), ElementsAre(3u));
    shared[0] = 'z';
    EXPECT_THAT(all.changed(), ElementsAre(3u, 5u));
    all.accept();
    EXPECT_THAT(all.changed(), IsEmpty());
}

TEST(KeySources, LooksAtNothingForAnObjectThatIsGone)
{
    std::vector<char> bytes(8);
    const DeclaredKeySources declared = sources({{bytes.data(), 8}});
    KeySources all;
    const std::uint32_t first = all.add(1, &declared);
    const std::uint32_t second = all.add(2, &declared);
    all.remove({{1, first}, {2, second}});
    std::vector<char>().swap(bytes); // a sanitizer sees a look at it
    EXPECT_THAT(all.changed(), IsEmpty());
    char other[8] = {};
    const DeclaredKeySources next = sources({{other, 8}});
    all.add(3, &next); // takes the place of the one before
    other[7] = 1;
    EXPECT_THAT(all.changed(), ElementsAre(3u));
}

TEST(KeySources, TakesObjectsWithoutSources)
{
    KeySources all;
    const DeclaredKeySources nothing = sources({{nullptr, 5}, {"x", 0}});
    EXPECT_EQ(all.add(1, nullptr), KeySources::none);
    all.remove({{1, KeySources::none}, {2, all.add(2, &nothing)}});
    EXPECT_THAT(all.changed(), IsEmpty());
}

TEST(KeySources, RefusesARegionBeyondAllRecordsAndStaysAsItWas)
{
    char small[1] = {};
    const DeclaredKeySources huge = sources({{small, 1}, {small, std::size_t{1} << 40}});
    KeySources all;
    EXPECT_THROW(all.add(1, &huge), std::length_error);
    small[0] = 1;
    EXPECT_THAT(all.changed(), IsEmpty());
}

} // namespace
} // namespace KDV
