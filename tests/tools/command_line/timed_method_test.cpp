// SPDX-License-Identifier: MIT
#include "command_line/timed_method.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "command_line/point_options.hpp"

namespace kelvora::tool {
namespace {

constexpr recording::SensorSize kSensor = {100, 80};
constexpr std::uint64_t kStart = 1'600'000'000'000'000;  // since 1970

/// Two squares, one after the other. More events than fit into one batch.
std::vector<Event2D> twoSquares() {
    std::vector<Event2D> events;
    for (int i = 0; i < 2000; ++i) {
        const int x = (i < 1000 ? 10 : 60) + i % 10;
        const int y = (i < 1000 ? 20 : 50) + i / 10 % 10;
        events.emplace_back(static_cast<unsigned short>(x), static_cast<unsigned short>(y),
                            static_cast<unsigned char>(i % 2),
                            kStart + static_cast<std::uint64_t>(i) * 4);
    }
    return events;
}

recording::Window windowOf(const std::vector<Event2D>& events) {
    return {kStart, kStart + 10'000, events.data(), events.data() + events.size()};
}

void expectSame(const std::vector<ClusterGeometry>& a, const std::vector<ClusterGeometry>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        EXPECT_EQ(a[i].x, b[i].x);
        EXPECT_EQ(a[i].y, b[i].y);
        EXPECT_EQ(a[i].width, b[i].width);
        EXPECT_EQ(a[i].height, b[i].height);
        EXPECT_EQ(a[i].start_time, b[i].start_time);
        EXPECT_EQ(a[i].timestamp, b[i].timestamp);
    }
}

std::vector<ClusterGeometry> clustersOf(TimedMethod method) {
    TimedMethodOptions options;
    options.centroid.clusters = 2;
    const auto cluster = makeTimedMethod(method, kSensor, options);
    const auto events = twoSquares();
    std::vector<ClusterGeometry> clusters;
    // The second call does not depend on the first.
    cluster(windowOf(events), clusters);
    cluster(windowOf(events), clusters);
    return clusters;
}

std::vector<ClusterGeometry> clustersOf(ClusteringMethod& method) {
    const auto events = twoSquares();
    WindowClusters found;
    method.cluster(windowOf(events), found);
    return found.clusters;
}

TEST(TimedMethod, FindsWhatTheClusterCommandFindsByGrid) {
    GridMethod method(kSensor, Polarity::All, {});
    const auto clusters = clustersOf(TimedMethod::Grid);
    EXPECT_EQ(clusters.size(), 2U);
    expectSame(clusters, clustersOf(method));
}

TEST(TimedMethod, FindsWhatTheClusterCommandFindsByDensity) {
    for (const int dim : {2, 3}) {
        PointOptions points;
        points.dim = dim;
        const auto method = makeDensityMethod(kSensor, points, {}, true);
        const auto clusters =
            clustersOf(dim == 2 ? TimedMethod::Density2d : TimedMethod::Density3d);
        EXPECT_EQ(clusters.size(), 2U);
        expectSame(clusters, clustersOf(*method));
    }
}

TEST(TimedMethod, DividesIntoAsManyClustersAsAskedFor) {
    EXPECT_EQ(clustersOf(TimedMethod::Centroid2d).size(), 2U);
    const auto clusters = clustersOf(TimedMethod::Centroid3d);
    ASSERT_EQ(clusters.size(), 2U);
    EXPECT_EQ(clusters[0].width, 9);
    EXPECT_EQ(clusters[1].height, 9);
}

}  // namespace
}  // namespace kelvora::tool
