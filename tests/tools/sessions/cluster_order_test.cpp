// SPDX-License-Identifier: MIT
#include "sessions/cluster_order.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvora::tool {
namespace {

using testing::ElementsAre;

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
