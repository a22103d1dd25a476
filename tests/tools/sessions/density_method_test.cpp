// SPDX-License-Identifier: MIT
#include "sessions/density_method.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace kelvora::tool {
namespace {

// Microseconds since 1970, as from some cameras: adjacent floats differ by two minutes there.
constexpr std::uint64_t kStart = 1'615'211'683'000'000;

/// Two squares of events, the second a little later, and a lonely event between them.
std::vector<Event2D> twoSquares() {
    std::vector<Event2D> events;
    for (unsigned short i = 0; i < 100; ++i) {
        events.emplace_back(200 + i % 10, 100 + i / 10, 1, kStart + 1000 + i);
    }
    events.emplace_back(150, 100, 0, kStart + 2000);
    for (unsigned short i = 0; i < 100; ++i) {
        events.emplace_back(20 + i % 10, 30 + i / 10, 0, kStart + 5000 + 2 * i);
    }
    return events;
}

WindowClusters found(const Settings& settings) {
    const std::vector<Event2D> events = twoSquares();
    const auto method = makeDensityMethod(settings, {320, 240});
    WindowClusters result;
    // The second window must not depend on the first.
    for (int i = 0; i < 2; ++i) {
        method->cluster({kStart, kStart + 10'000, events.data(), events.data() + events.size()},
                        result);
    }
    return result;
}

struct Variant {
    int dim;
    Precision precision;
    int jobs;
};

class DensityMethodTest : public testing::TestWithParam<Variant> {
protected:
    static WindowClusters foundByVariant() {
        Settings settings;
        settings.point.dim = GetParam().dim;
        settings.point.precision = GetParam().precision;
        settings.density.jobs = GetParam().jobs;
        return found(settings);
    }
};

TEST_P(DensityMethodTest, FindsTheSquaresInTheOrderOfTheirEvents) {
    const WindowClusters result = foundByVariant();
    ASSERT_EQ(result.clusters.size(), 2U);
    EXPECT_NEAR(result.clusters[0].x, 200, 1e-3);
    EXPECT_NEAR(result.clusters[1].y, 30, 1e-3);
    EXPECT_EQ(result.clusters[0].timestamp, kStart + 10'000);
}

TEST_P(DensityMethodTest, LabelsEveryEvent) {
    const WindowClusters result = foundByVariant();
    ASSERT_EQ(result.labels.size(), 201U);
    EXPECT_EQ(std::count(result.labels.begin(), result.labels.end(), 0), 100);
    EXPECT_EQ(std::count(result.labels.begin(), result.labels.end(), 1), 100);
    EXPECT_EQ(result.labels[100], kNoCluster);
}

INSTANTIATE_TEST_SUITE_P(Variants, DensityMethodTest,
                         testing::Values(Variant{2, Precision::Float, 1},
                                         Variant{2, Precision::Double, 2},
                                         Variant{3, Precision::Float, 2},
                                         Variant{3, Precision::Double, 1}));

TEST(DensityMethod, KeepsTimesSince1970InThreeDimensions) {
    Settings settings;
    settings.point.dim = 3;
    const WindowClusters result = found(settings);
    ASSERT_EQ(result.clusters.size(), 2U);
    EXPECT_EQ(result.time_origin, kStart + 1000);
    EXPECT_NEAR(result.clusters[0].start_time, 0, 1);
    EXPECT_NEAR(result.clusters[1].start_time, 4000, 1);
    EXPECT_NEAR(result.clusters[1].duration, 198, 1);
}

TEST(DensityMethod, ClustersTheNewestEventsIfTheCapacityIsBounded) {
    Settings settings;
    settings.point.capacity = 100;
    const WindowClusters result = found(settings);
    ASSERT_EQ(result.clusters.size(), 1U);
    EXPECT_NEAR(result.clusters[0].x, 20, 1e-3);
}

}  // namespace
}  // namespace kelvora::tool
