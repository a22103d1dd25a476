// SPDX-License-Identifier: MIT
#include "clustering/disjoint_sets.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <numeric>
#include <vector>

#include "support/event_builders.hpp"

namespace kelvora {
namespace {

TEST(DisjointSets, AreSingleNumbersAtFirst) {
    DisjointSets sets(5);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(sets.find(i), i);
    }
}

TEST(DisjointSets, MayBeNone) {
    EXPECT_NO_THROW(DisjointSets(0));
}

TEST(DisjointSets, PutTheFirstUnderTheSecondWhicheverIsLarger) {
    DisjointSets sets(5);
    sets.join(0, 1);
    sets.join(1, 2);
    sets.join(0, 3);
    EXPECT_EQ(sets.find(0), 3U);
    EXPECT_EQ(sets.find(1), 3U);
    EXPECT_EQ(sets.find(2), 3U);
    EXPECT_EQ(sets.find(4), 4U);
}

TEST(DisjointSets, StayAsTheyAreWhenJoinedWithThemselves) {
    DisjointSets sets(3);
    sets.join(1, 1);
    sets.join(0, 1);
    sets.join(1, 0);
    EXPECT_EQ(sets.find(0), 1U);
    EXPECT_EQ(sets.find(1), 1U);
    EXPECT_EQ(sets.find(2), 2U);
}

TEST(DisjointSets, FindTheEndOfAMillionLinks) {
    constexpr std::size_t kCount = 1'000'000;
    DisjointSets sets(kCount);
    for (std::size_t i = 0; i + 1 < kCount; ++i) {
        sets.join(i, i + 1);
    }
    EXPECT_EQ(sets.find(0), kCount - 1);
    EXPECT_EQ(sets.find(kCount / 2), kCount - 1);
}

TEST(DisjointSets, AreTheSameAsNumbersPaintedInColours) {
    test::Random random(1);
    constexpr std::size_t kCount = 40;
    for (int round = 0; round < 200; ++round) {
        DisjointSets sets(kCount);
        std::vector<std::size_t> colour(kCount);
        std::iota(colour.begin(), colour.end(), std::size_t{0});
        for (int joined = 0; joined < 50; ++joined) {
            const std::size_t x = random() % kCount;
            const std::size_t y = random() % kCount;
            const std::size_t old_colour = colour[x];
            const std::size_t new_colour = colour[y];
            for (std::size_t& any : colour) {
                any = any == old_colour ? new_colour : any;
            }
            sets.join(x, y);
            const std::size_t probe = random() % kCount;
            for (std::size_t i = 0; i < kCount; ++i) {
                ASSERT_EQ(sets.find(i) == sets.find(probe), colour[i] == colour[probe]);
            }
        }
    }
}

}  // namespace
}  // namespace kelvora
