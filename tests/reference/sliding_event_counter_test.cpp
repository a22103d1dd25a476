// SPDX-License-Identifier: MIT
#include "reference/sliding_event_counter.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora::test {
namespace {

/// The count in a window of 10 microseconds, in five bins, after some events.
std::uint32_t countAfter(const std::vector<std::uint64_t>& timestamps) {
    reference::SlidingEventCounter counter(10, 5);
    for (const std::uint64_t timestamp : timestamps) {
        counter.addTimestamp(timestamp);
    }
    return counter.getEventCount();
}

TEST(ReferenceCounter, CountsAllEventsWithShortGaps) {
    EXPECT_EQ(countAfter({}), 0U);
    EXPECT_EQ(countAfter({5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20}), 16U);
}

TEST(ReferenceCounter, ForgetsTheOldestBinsAsTimeAdvances) {
    EXPECT_EQ(countAfter({100, 101, 105}), 3U);
    EXPECT_EQ(countAfter({100, 101, 104, 106, 108, 110}), 6U);
    // The first two were in one bin.
    EXPECT_EQ(countAfter({100, 101, 104, 106, 108, 110, 112}), 5U);
}

TEST(ReferenceCounter, StartsAgainAfterAGapAsLongAsTheWindow) {
    EXPECT_EQ(countAfter({100, 101, 110}), 3U);
    EXPECT_EQ(countAfter({100, 101, 111}), 1U);
}

TEST(ReferenceCounter, StartsAgainWithAnEventOlderThanTheLast) {
    EXPECT_EQ(countAfter({100, 101, 99}), 1U);
}

}  // namespace
}  // namespace kelvora::test
