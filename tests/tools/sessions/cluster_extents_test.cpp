// SPDX-License-Identifier: MIT
#include "sessions/cluster_extents.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora::tool {
namespace {

const std::vector<Event2D> kEvents = {
    {5, 9, 1, 1000}, {7, 3, 1, 1001}, {5, 2, 1, 1004}, {5, 4, 1, 1009}};

recording::Window window() {
    return {0, 2000, kEvents.data(), kEvents.data() + kEvents.size()};
}

WindowClusters found(bool in_time) {
    WindowClusters result;
    result.clusters.emplace_back(0.0F, 0.0F, 0.0F, 0.0F, 2000ULL);
    result.clusters.back().start_time = in_time ? 0 : -1;
    result.labels = {0, kNoCluster, 0, 0};
    return result;
}

TEST(MeasureExtents, CountsEventsAndMeasuresTimesOnlyOfClustersInTime) {
    WindowClusters in_time = found(true);
    measureExtents(window(), in_time);
    EXPECT_EQ(in_time.extents[0].start_time, 1000);
    EXPECT_EQ(in_time.extents[0].duration, 9);
    EXPECT_EQ(in_time.extents[0].events, 3);
    WindowClusters in_plane = found(false);
    measureExtents(window(), in_plane);
    EXPECT_EQ(in_plane.extents[0].start_time, -1);
    EXPECT_EQ(in_plane.extents[0].duration, 0);
    EXPECT_EQ(in_plane.extents[0].events, 3);
}

TEST(MeasureExtents, KnowsNothingWithoutLabels) {
    WindowClusters without = found(true);
    without.labels.clear();
    measureExtents(window(), without);
    EXPECT_EQ(without.extents[0].events, -1);
}

TEST(ReplaceZeroBoxes, SetsTheBoxOfTheEventsAtLeastOnePixelWide) {
    WindowClusters result = found(false);
    replaceZeroBoxes(window(), result);
    EXPECT_EQ(result.clusters[0].x, 5);
    EXPECT_EQ(result.clusters[0].y, 2);
    EXPECT_EQ(result.clusters[0].width, 1);
    EXPECT_EQ(result.clusters[0].height, 7);
}

TEST(ReplaceZeroBoxes, LeavesOtherBoxesAlone) {
    WindowClusters result = found(false);
    result.clusters[0] = ClusterGeometry(1, 2, 3, 4, 2000);
    replaceZeroBoxes(window(), result);
    EXPECT_EQ(result.clusters[0].x, 1);
    EXPECT_EQ(result.clusters[0].height, 4);
}

}  // namespace
}  // namespace kelvora::tool
