// SPDX-License-Identifier: MIT
#include "sessions/centroid_method.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace kelvora::tool {
namespace {

constexpr std::uint64_t kStart = 1'615'211'683'000'000;

/// A square of 100 events around (204.5, 104.5), then one of 50 around (24.5, 32).
std::vector<Event2D> twoSquares() {
    std::vector<Event2D> events;
    for (unsigned short i = 0; i < 100; ++i) {
        events.emplace_back(200 + i % 10, 100 + i / 10, 1, kStart + 1000 + i);
    }
    for (unsigned short i = 0; i < 50; ++i) {
        events.emplace_back(20 + i % 10, 30 + i / 10, 0, kStart + 5000 + 2 * i);
    }
    return events;
}

WindowClusters found(ClusteringMethod& method, const std::vector<Event2D>& events) {
    WindowClusters result;
    method.cluster({kStart, kStart + 10'000, events.data(), events.data() + events.size()}, result);
    return result;
}

Settings clusters(unsigned long long k, Settings settings = {}) {
    settings.centroid.clusters = k;
    return settings;
}

struct Variant {
    int dim;
    Precision precision;
};

class CentroidMethodTest : public testing::TestWithParam<Variant> {
protected:
    static Settings points() {
        Settings result;
        result.point.dim = GetParam().dim;
        result.point.precision = GetParam().precision;
        result.point.scale_x = 2.0F;
        return result;
    }
};

TEST_P(CentroidMethodTest, FindsClustersWithCentroidsInPixelsInTheOrderOfTheirEvents) {
    const auto method = makeCentroidMethod(clusters(2, points()), {320, 240});
    // Any point may be the first centroid, so the library returns both orders.
    for (int i = 0; i < 20; ++i) {
        const WindowClusters result = found(*method, twoSquares());
        ASSERT_EQ(result.clusters.size(), 2U);
        EXPECT_NEAR(result.clusters[0].x, 200, 1e-3);
        EXPECT_NEAR(result.clusters[1].y, 30, 1e-3);
        ASSERT_EQ(result.centroids.size(), 2U);
        EXPECT_NEAR(result.centroids[0].x, 204.5, 1e-3);
        EXPECT_NEAR(result.centroids[0].y, 104.5, 1e-3);
        EXPECT_EQ(result.centroids[0].size, 100U);
        EXPECT_NEAR(result.centroids[1].x, 24.5, 1e-3);
        EXPECT_NEAR(result.centroids[1].y, 32, 1e-3);
        EXPECT_EQ(result.centroids[1].size, 50U);
    }
}

TEST_P(CentroidMethodTest, LabelsEveryEvent) {
    const auto method = makeCentroidMethod(clusters(2, points()), {320, 240});
    const WindowClusters result = found(*method, twoSquares());
    ASSERT_EQ(result.labels.size(), 150U);
    EXPECT_EQ(std::count(result.labels.begin(), result.labels.begin() + 100, 0), 100);
    EXPECT_EQ(std::count(result.labels.begin() + 100, result.labels.end(), 1), 50);
}

INSTANTIATE_TEST_SUITE_P(Variants, CentroidMethodTest,
                         testing::Values(Variant{2, Precision::Float},
                                         Variant{2, Precision::Double},
                                         Variant{3, Precision::Float},
                                         Variant{3, Precision::Double}));

TEST(CentroidMethod, KnowsTheTimeOfCentroidsInThreeDimensionsOnly) {
    const auto flat = makeCentroidMethod(clusters(2), {320, 240});
    EXPECT_FALSE(found(*flat, twoSquares()).centroids.front().time_us.has_value());
    Settings settings;
    settings.point.dim = 3;
    const auto deep = makeCentroidMethod(clusters(2, settings), {320, 240});
    const WindowClusters result = found(*deep, twoSquares());
    EXPECT_EQ(result.time_origin, kStart + 1000);
    EXPECT_NEAR(result.centroids[0].time_us.value(), 49.5, 0.01);
    EXPECT_NEAR(result.centroids[1].time_us.value(), 4049, 0.01);
}

TEST(CentroidMethod, LeavesOutClustersWithoutEvents) {
    const auto method = makeCentroidMethod(clusters(3), {320, 240});
    const std::vector<Event2D> same_pixel(5, Event2D(7, 8, 1, kStart));
    const WindowClusters result = found(*method, same_pixel);
    EXPECT_EQ(result.clusters.size(), 1U);
    ASSERT_EQ(result.centroids.size(), 1U);
    EXPECT_EQ(result.centroids.front().size, 5U);
}

TEST(CentroidMethod, ReportsWindowsWithFewerEventsThanClusters) {
    const auto method = makeCentroidMethod(clusters(151), {320, 240});
    EXPECT_EQ(method->remark(), "");
    EXPECT_TRUE(found(*method, twoSquares()).clusters.empty());
    EXPECT_EQ(method->remark(),
              "windows without clusters, because they had fewer than 151 events: 1");
}

}  // namespace
}  // namespace kelvora::tool
