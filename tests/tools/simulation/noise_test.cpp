// SPDX-License-Identifier: MIT
#include "simulation/noise.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace kelvora::simulation {
namespace {

std::vector<Event2D> eventsOf(Noise noise, std::uint64_t duration_us) {
    std::vector<Event2D> events;
    for (std::uint64_t end_us = 1000; end_us <= duration_us; end_us += 1000) {
        noise.advance(end_us, events);
    }
    return events;
}

std::map<std::pair<int, int>, int> countsByPixel(const std::vector<Event2D>& events) {
    std::map<std::pair<int, int>, int> counts;
    for (const Event2D& event : events) {
        ++counts[{event.x, event.y}];
    }
    return counts;
}

TEST(Noise, BackgroundHasTheRateItIsAskedFor) {
    const auto events = eventsOf(Noise::background(100, 50, 2, {1, 1}), 3'000'000);
    const double expected = 100 * 50 * 2 * 3;
    EXPECT_NEAR(static_cast<double>(events.size()), expected, 5 * std::sqrt(expected));
}

TEST(Noise, BackgroundComesFromAllPixelsAndInBothPolarities) {
    const auto events = eventsOf(Noise::background(20, 10, 100, {1, 1}), 1'000'000);
    const auto counts = countsByPixel(events);
    EXPECT_EQ(counts.size(), 200U);
    EXPECT_LT(counts.rbegin()->first.first, 20);
    const auto on = std::count_if(events.begin(), events.end(),
                                  [](const Event2D& e) { return e.polarity == 1; });
    EXPECT_NEAR(static_cast<double>(on), 10'000, 500);
}

TEST(Noise, NumberOfEventsVariesAsInAPoissonProcess) {
    const auto events = eventsOf(Noise::background(100, 100, 1, {1, 1}), 2'000'000);
    std::vector<double> counts(2000);
    for (const Event2D& event : events) {
        ++counts[event.timestamp / 1000];
    }
    double variance = 0;
    for (const double count : counts) {
        variance += (count - 10) * (count - 10) / 2000;
    }
    EXPECT_NEAR(variance, 10, 1.5);
}

TEST(Noise, HotPixelsAreDifferentOnesWithTheRateTheyAreAskedFor) {
    const auto events = eventsOf(Noise::hotPixels(5, 100, 50, 400, {1, 1}), 5'000'000);
    const auto counts = countsByPixel(events);
    ASSERT_EQ(counts.size(), 5U);
    for (const auto& [place, count] : counts) {
        EXPECT_NEAR(count, 2000, 5 * std::sqrt(2000));
    }
}

TEST(Noise, AllPixelsMayBeHot) {
    const auto events = eventsOf(Noise::hotPixels(256, 16, 16, 100, {1, 1}), 1'000'000);
    EXPECT_EQ(countsByPixel(events).size(), 256U);
}

TEST(Noise, TimesAreOrderedAndNeitherLostNorDoubledBetweenSteps) {
    Noise in_steps = Noise::background(100, 50, 10, {1, 1});
    const auto stepwise = eventsOf(in_steps, 100'000);
    std::vector<Event2D> at_once;
    in_steps.advance(100'000, at_once);
    ASSERT_EQ(stepwise.size(), at_once.size());
    for (std::size_t i = 0; i < stepwise.size(); ++i) {
        ASSERT_EQ(stepwise[i].timestamp, at_once[i].timestamp);
        ASSERT_LT(stepwise[i].timestamp, 100'000U);
        ASSERT_TRUE(i == 0 || stepwise[i - 1].timestamp <= stepwise[i].timestamp);
    }
}

TEST(Noise, ThereIsNoneAtRateZero) {
    EXPECT_TRUE(eventsOf(Noise::background(100, 50, 0, {1, 1}), 1'000'000).empty());
    EXPECT_TRUE(eventsOf(Noise::hotPixels(0, 100, 50, 400, {1, 1}), 1'000'000).empty());
    EXPECT_TRUE(eventsOf(Noise::hotPixels(3, 100, 50, 0, {1, 1}), 1'000'000).empty());
}

}  // namespace
}  // namespace kelvora::simulation
