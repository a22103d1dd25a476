// SPDX-License-Identifier: MIT
// Centroid clustering without enough memory.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "kelvora/centroid_clustering.hpp"
#include "support/allocation_checks.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Object = CentroidClustering<2, float>;

/// Two groups that are found wherever the first centroid lies.
Kind::Points twoGroups() {
    Random random(1);
    Kind::Points points = randomGridPoints<Kind>(random, 100, 0, 10, 1);
    const Kind::Points others = randomGridPoints<Kind>(random, 100, 500, 10, 1);
    points.insert(points.end(), others.begin(), others.end());
    return points;
}

TEST(CentroidClusteringWithoutMemory, CanBeUsedAgain) {
    const Kind::Points points = twoGroups();
    Clustering<float> found;
    const auto cluster = [&](std::unique_ptr<Object>& object) {
        object->generateClusters(points, found.clusters, found.boxes);
    };
    const std::size_t failures = failEachAllocation(
        [&] {
            found = {};
            return std::make_unique<Object>(2, 10, 1e-6);
        },
        cluster,
        [&](std::unique_ptr<Object>& object) {
            cluster(object);
            std::vector<std::size_t> counts;
            object->getNumPointsPerCluster(counts);
            EXPECT_EQ(counts, (std::vector<std::size_t>{100, 100}));
            ASSERT_EQ(found.clusters.size(), 2U);
            EXPECT_EQ(found.clusters[0].size(), 100U);
            EXPECT_EQ(found.clusters[1].size(), 100U);
        });
    EXPECT_GT(failures, 20U);
}

TEST(CentroidClusteringWithoutMemory, CanBeUsedAgainWithMoreClusters) {
    const Kind::Points points = twoGroups();
    const std::size_t failures = failEachAllocation(
        [] {
            auto object = std::make_unique<Object>(1, 10, 1e-6);
            object->setClusterNumber(2);
            return object;
        },
        [&](std::unique_ptr<Object>& object) {
            Clustering<float> found;
            object->generateClusters(points, found.clusters, found.boxes);
        },
        [&](std::unique_ptr<Object>& object) {
            object->setClusterNumber(50);
            Clustering<float> found;
            object->generateClusters(points, found.clusters, found.boxes);
            std::vector<std::size_t> counts;
            object->getNumPointsPerCluster(counts);
            EXPECT_EQ(counts.size(), 50U);
        });
    EXPECT_GT(failures, 20U);
}

}  // namespace
}  // namespace kelvora::test
