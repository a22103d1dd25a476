// SPDX-License-Identifier: MIT
#include "sessions/event_labels.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace kelvora::tool {
namespace {

using testing::ElementsAre;

const EventScales kScales{0.1F, 0.3F, 0.001F};
constexpr std::uint64_t kStart = 1'615'211'683'000'000;

recording::Window windowOf(const std::vector<Event2D>& events) {
    return {kStart, kStart + 10'000, events.data(), events.data() + events.size()};
}

template <int DIM>
std::vector<std::vector<KDPoint<DIM, float>>> clustersOf(
    const std::vector<std::vector<Event2D>>& clusters) {
    std::vector<std::vector<KDPoint<DIM, float>>> points;
    for (const auto& events : clusters) {
        points.emplace_back();
        for (const Event2D& event : events) {
            points.back().push_back(pointOf<DIM, float>(event, kStart, kScales));
        }
    }
    return points;
}

TEST(LabelsFromPoints, FindsTheClusterOfEachEvent) {
    const std::vector<Event2D> events{
        {1, 1, 1, kStart}, {2, 2, 1, kStart + 1}, {3, 3, 1, kStart + 2}};
    const auto labels =
        labelsFromPoints(windowOf(events), clustersOf<2>({{events[2]}, {events[0]}}), kScales);
    EXPECT_THAT(labels, ElementsAre(1, kNoCluster, 0));
}

TEST(LabelsFromPoints, TellsEventsOfOnePixelApartByTimeInThreeDimensions) {
    const std::vector<Event2D> events{{1, 1, 1, kStart}, {1, 1, 1, kStart + 5000}};
    const auto labels = labelsFromPoints(windowOf(events), clustersOf<3>({{events[1]}}), kScales);
    EXPECT_THAT(labels, ElementsAre(kNoCluster, 0));
}

TEST(LabelsFromPoints, TakesTheNewestEventsOfAPixelIfNotAllWereClustered) {
    const std::vector<Event2D> events{
        {1, 1, 1, kStart}, {1, 1, 0, kStart + 1}, {1, 1, 1, kStart + 2}};
    const auto labels =
        labelsFromPoints(windowOf(events), clustersOf<2>({{events[1], events[2]}}), kScales);
    EXPECT_THAT(labels, ElementsAre(kNoCluster, 0, 0));
}

TEST(SortByFirstEvent, RenumbersClustersAndLabels) {
    WindowClusters found;
    found.clusters = {{10, 0, 1, 1, 0}, {20, 0, 1, 1, 0}, {30, 0, 1, 1, 0}};
    found.labels = {kNoCluster, 2, 0, 2, 1};
    sortByFirstEvent(found);
    EXPECT_THAT(found.labels, ElementsAre(kNoCluster, 0, 1, 0, 2));
    ASSERT_EQ(found.clusters.size(), 3U);
    EXPECT_EQ(found.clusters[0].x, 30);
    EXPECT_EQ(found.clusters[1].x, 10);
    EXPECT_EQ(found.clusters[2].x, 20);
}

TEST(SortByFirstEvent, KeepsCentroidsBesideTheirClustersAndDropsThoseWithoutEvents) {
    WindowClusters found;
    found.clusters = {{10, 0, 1, 1, 0}, {20, 0, 1, 1, 0}, {30, 0, 1, 1, 0}};
    found.centroids = {{11, 0, {}, 1}, {21, 0, {}, 0}, {31, 0, {}, 1}};
    found.labels = {2, 0};
    sortByFirstEvent(found);
    ASSERT_EQ(found.centroids.size(), 2U);
    EXPECT_EQ(found.centroids[0].x, 31);
    EXPECT_EQ(found.centroids[1].x, 11);
    EXPECT_EQ(found.clusters[1].x, 10);
}

}  // namespace
}  // namespace kelvora::tool
