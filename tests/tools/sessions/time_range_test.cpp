// SPDX-License-Identifier: MIT
#include "sessions/time_range.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace kelvora::tool {
namespace {

std::vector<Event2D> eventsAt(const std::vector<unsigned long long>& times) {
    std::vector<Event2D> events;
    for (const auto time : times) {
        events.emplace_back(1, 1, 1, time);
    }
    return events;
}

std::vector<unsigned long long> timesOf(const std::vector<Event2D>& events) {
    std::vector<unsigned long long> times;
    for (const Event2D& event : events) {
        times.push_back(event.timestamp);
    }
    return times;
}

TEST(TimeRange, CountsFromTheFirstEvent) {
    TimeRange range(Duration{10}, Duration{30});
    auto events = eventsAt({1000, 1009, 1010, 1029, 1030, 1031});
    range.keepInside(events);
    EXPECT_THAT(timesOf(events), testing::ElementsAre(1010, 1029));
}

TEST(TimeRange, KeepsTheOriginFromChunkToChunk) {
    TimeRange range(Duration{10}, Duration{30});
    auto first = eventsAt({1000, 1001});
    range.keepInside(first);
    EXPECT_TRUE(first.empty());
    auto second = eventsAt({1005, 1015});
    range.keepInside(second);
    EXPECT_THAT(timesOf(second), testing::ElementsAre(1015));
}

TEST(TimeRange, IsOverOnceAnEventLiesBehindIt) {
    TimeRange range(Duration{0}, Duration{30});
    auto inside = eventsAt({0, 29});
    range.keepInside(inside);
    EXPECT_FALSE(range.isOver());
    auto behind = eventsAt({30});
    range.keepInside(behind);
    EXPECT_TRUE(behind.empty());
    EXPECT_TRUE(range.isOver());
}

TEST(TimeRange, WithoutAnEndIsNeverOver) {
    TimeRange range(Duration{0}, {});
    auto events = eventsAt({0, ~0ULL});
    range.keepInside(events);
    EXPECT_EQ(events.size(), 2U);
    EXPECT_FALSE(range.isOver());
}

TEST(TimeRange, LeavesAnEmptyChunkAlone) {
    TimeRange range(Duration{0}, Duration{30});
    std::vector<Event2D> none;
    range.keepInside(none);
    EXPECT_TRUE(none.empty());
}

}  // namespace
}  // namespace kelvora::tool
