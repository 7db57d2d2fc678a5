#include "common/IdList.h"

#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;
namespace KDV {
namespace {

std::vector<std::uint32_t> idsOf(const IdList& list) { return {list.begin(), list.end()}; }

void merge(IdList& list, const std::vector<std::uint32_t>& ids) { list.merge(ids.data(), ids.data() + ids.size()); }

void erase(IdList& list, const std::vector<std::uint32_t>& ids) { list.erase(ids.data(), ids.data() + ids.size()); }

TEST(IdList, AppendsInOrderAndTakesTheLastOneOnce)
{
    IdList list;
    for (const std::uint32_t id : {1u, 5u, 5u, 7u, 9u})
        list.append(id);
    EXPECT_THAT(idsOf(list), ElementsAre(1u, 5u, 7u, 9u));
    EXPECT_TRUE(list.contains(7));
    EXPECT_FALSE(list.contains(6));
}

TEST(IdList, TakesOutRunsAndSingleIdsAndPassesOverOthers)
{
    IdList list;
    merge(list, {1, 2, 3, 4, 5, 6, 7, 8});
    erase(list, {0, 2, 3, 6, 6, 9});
    EXPECT_THAT(idsOf(list), ElementsAre(1u, 4u, 5u, 7u, 8u));
    erase(list, {1, 8});
    EXPECT_THAT(idsOf(list), ElementsAre(4u, 5u, 7u));
    erase(list, {4, 5, 7});
    EXPECT_THAT(idsOf(list), IsEmpty());
}

TEST(IdList, GivesItsMemoryBackAndStartsAgain)
{
    IdList list;
    merge(list, {1, 2, 3});
    list.clear();
    EXPECT_TRUE(list.empty());
    merge(list, {4});
    EXPECT_THAT(idsOf(list), ElementsAre(4u));
}

TEST(IdList, PutsNewNumbersInTheirPlaces)
{
    IdList list;
    merge(list, {1, 3});
    const std::uint32_t numbers[] = {9, 0, 9, 1};
    list.renumber(numbers);
    EXPECT_THAT(idsOf(list), ElementsAre(0u, 1u));
}

TEST(IdList, HoldsWhatASetHolds)
{
    std::mt19937 engine(7);
    const auto below = [&](unsigned end) { return std::uniform_int_distribution<unsigned>(0, end - 1)(engine); };
    for (int round = 0; round < 300; ++round) {
        IdList list;
        std::set<std::uint32_t> expected;
        for (int step = 0; step < 30; ++step) {
            std::set<std::uint32_t> some;
            for (unsigned n = below(12); n > 0; --n)
                some.insert(below(60));
            const std::vector<std::uint32_t> ids(some.begin(), some.end());
            if (below(2) == 0) {
                merge(list, ids);
                expected.insert(some.begin(), some.end());
            } else {
                erase(list, ids);
                for (const std::uint32_t id : some)
                    expected.erase(id);
            }
            ASSERT_EQ(idsOf(list), std::vector<std::uint32_t>(expected.begin(), expected.end()));
        }
    }
}

} // namespace
} // namespace KDV
