// SPDX-License-Identifier: MIT
#include "clustering/concurrent_sets.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <utility>
#include <vector>

#include "support/event_builders.hpp"

namespace kelvora {
namespace {

TEST(ConcurrentSets, AreSingleNumbersAtFirst) {
    ConcurrentSets sets;
    sets.reset(5);
    for (std::uint32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(sets.find(i), i);
    }
}

TEST(ConcurrentSets, MayBeNone) {
    ConcurrentSets sets;
    EXPECT_NO_THROW(sets.reset(0));
}

TEST(ConcurrentSets, ShowSomeMembersWithoutASearchAndNeverOthers) {
    ConcurrentSets sets;
    sets.reset(5);
    sets.join(1, 2);
    sets.join(3, 4);
    EXPECT_TRUE(sets.isKnownIn(1, 1));
    EXPECT_TRUE(sets.isKnownIn(2, 1));
    EXPECT_FALSE(sets.isKnownIn(3, 1));
    EXPECT_FALSE(sets.isKnownIn(4, 1));
    sets.join(4, 2);
    EXPECT_TRUE(sets.isKnownIn(3, 1));
}

TEST(ConcurrentSets, AreKnownByTheirSmallestNumber) {
    ConcurrentSets sets;
    sets.reset(5);
    sets.join(4, 3);
    sets.join(1, 2);
    EXPECT_EQ(sets.find(4), 3U);
    EXPECT_EQ(sets.find(2), 1U);
    sets.join(2, 4);
    for (const std::uint32_t i : {1U, 2U, 3U, 4U}) {
        EXPECT_EQ(sets.find(i), 1U);
    }
    EXPECT_EQ(sets.find(0), 0U);
}

TEST(ConcurrentSets, StayTheSameWhenJoinedWithThemselves) {
    ConcurrentSets sets;
    sets.reset(3);
    sets.join(1, 1);
    sets.join(1, 2);
    sets.join(2, 1);
    EXPECT_EQ(sets.find(0), 0U);
    EXPECT_EQ(sets.find(2), 1U);
}

TEST(ConcurrentSets, ForgetAllWhenReset) {
    ConcurrentSets sets;
    sets.reset(3);
    sets.join(0, 2);
    sets.reset(6);
    for (std::uint32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(sets.find(i), i);
    }
}

TEST(ConcurrentSets, FindTheEndOfAMillionLinks) {
    constexpr std::uint32_t kCount = 1'000'000;
    ConcurrentSets sets;
    sets.reset(kCount);
    for (std::uint32_t i = kCount - 1; i > 0; --i) {
        sets.join(i, i - 1);
    }
    EXPECT_EQ(sets.find(kCount - 1), 0U);
}

using Pair = std::pair<std::uint32_t, std::uint32_t>;

/// The smallest number connected with each element, found by flood fill.
std::vector<std::uint32_t> paintedSets(std::size_t count, const std::vector<Pair>& pairs) {
    std::vector<std::uint32_t> colour(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        colour[i] = i;
    }
    for (const auto& [a, b] : pairs) {
        const auto kept = std::min(colour[a], colour[b]);
        const auto gone = std::max(colour[a], colour[b]);
        for (std::uint32_t& c : colour) {
            c = c == gone ? kept : c;
        }
    }
    return colour;
}

TEST(ConcurrentSets, AreTheSameAsByPaintingForAnyNumberOfThreads) {
    constexpr std::size_t kCount = 1000;
    for (std::uint64_t seed = 0; seed < 30; ++seed) {
        test::Random random(seed);
        std::vector<Pair> pairs(400 + 20 * seed);
        for (Pair& pair : pairs) {
            pair = {static_cast<std::uint32_t>(random() % kCount),
                    static_cast<std::uint32_t>(random() % kCount)};
        }
        ConcurrentSets sets;
        sets.reset(kCount);
        std::vector<std::thread> threads;
        for (std::size_t thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&, thread] {
                for (std::size_t i = thread; i < pairs.size(); i += 4) {
                    sets.join(pairs[i].first, pairs[i].second);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        const auto expected = paintedSets(kCount, pairs);
        for (std::uint32_t i = 0; i < kCount; ++i) {
            ASSERT_EQ(sets.find(i), expected[i]) << "seed " << seed;
        }
    }
}

}  // namespace
}  // namespace kelvora
