// SPDX-License-Identifier: MIT
#include "command_line/duration_histogram.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace kelvora::tool {
namespace {

using std::chrono::nanoseconds;

void expectAlmost(nanoseconds actual, double expected) {
    EXPECT_NEAR(static_cast<double>(actual.count()), expected, 0.01 * expected + 0.5);
}

TEST(DurationHistogram, HasNoQuantilesAtFirst) {
    EXPECT_EQ(DurationHistogram().quantile(0.5), nanoseconds(0));
    EXPECT_EQ(DurationHistogram().count(), 0U);
}

TEST(DurationHistogram, GivesTheQuantilesOfSortedDurationsToOnePercent) {
    std::mt19937_64 random(1);
    DurationHistogram histogram;
    std::vector<double> durations;
    for (int i = 0; i < 10'000; ++i) {
        // From nanoseconds to minutes.
        const double exponent = static_cast<double>(random() % 100'000) * 1e-5 * 11.0;
        durations.push_back(std::floor(std::pow(10.0, exponent)));
        histogram.add(nanoseconds(static_cast<std::int64_t>(durations.back())));
    }
    std::sort(durations.begin(), durations.end());
    EXPECT_EQ(histogram.count(), 10'000U);
    for (const double share : {0.01, 0.25, 0.5, 0.9, 0.99, 1.0}) {
        const auto rank = static_cast<std::size_t>(std::ceil(share * 10'000)) - 1;
        expectAlmost(histogram.quantile(share), durations[rank]);
    }
    expectAlmost(histogram.quantile(0), durations.front());
}

TEST(DurationHistogram, DistinguishesARareLongDurationFromTheMedian) {
    DurationHistogram histogram;
    for (int i = 0; i < 99; ++i) {
        histogram.add(nanoseconds(1000));
    }
    histogram.add(nanoseconds(5'000'000));
    expectAlmost(histogram.quantile(0.5), 1000);
    expectAlmost(histogram.quantile(0.99), 1000);
    expectAlmost(histogram.quantile(1), 5'000'000);
}

TEST(DurationHistogram, AcceptsDurationsOfZeroAndOfYears) {
    DurationHistogram histogram;
    histogram.add(nanoseconds(0));
    expectAlmost(histogram.quantile(1), 1);
    histogram.add(nanoseconds::max());
    EXPECT_GT(histogram.quantile(1), std::chrono::hours(24));
}

}  // namespace
}  // namespace kelvora::tool
