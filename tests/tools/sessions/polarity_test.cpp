// SPDX-License-Identifier: MIT
#include "sessions/polarity.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace kelvora::tool {
namespace {

std::vector<int> timesKept(Polarity wanted) {
    std::vector<Event2D> events;
    events.emplace_back(0, 0, 1, 1);
    events.emplace_back(0, 0, 0, 2);
    events.emplace_back(0, 0, 0, 3);
    events.emplace_back(0, 0, 1, 4);
    keepPolarity(events, wanted);
    std::vector<int> times;
    for (const Event2D& event : events) {
        times.push_back(static_cast<int>(event.timestamp));
    }
    return times;
}

TEST(KeepPolarity, KeepsTheRequestedEventsInOrder) {
    EXPECT_THAT(timesKept(Polarity::On), testing::ElementsAre(1, 4));
    EXPECT_THAT(timesKept(Polarity::Off), testing::ElementsAre(2, 3));
}

TEST(KeepPolarity, KeepsAllIfBothAreRequested) {
    EXPECT_THAT(timesKept(Polarity::All), testing::ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(timesKept(Polarity::Separate), testing::ElementsAre(1, 2, 3, 4));
}

}  // namespace
}  // namespace kelvora::tool
