// SPDX-License-Identifier: MIT
#include "support/first_difference.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace kelvora::test {
namespace {

std::vector<ClusterGeometry> threeClusters() {
    return {{0, 0, 8, 8, 7}, {16, 0, 8, 12, 7}, {4, 20, 12, 8, 7}};
}

TEST(FirstDifference, IsNoneBetweenEqualLists) {
    EXPECT_EQ(firstDifference(threeClusters(), threeClusters()), std::nullopt);
    EXPECT_EQ(firstDifference({}, {}), std::nullopt);
}

TEST(FirstDifference, IsFoundWhenTwoClustersAreSwapped) {
    for (const auto& [first, second] :
         std::vector<std::pair<std::size_t, std::size_t>>{{0, 1}, {0, 2}, {1, 2}}) {
        auto clusters = threeClusters();
        std::swap(clusters[first], clusters[second]);
        EXPECT_NE(firstDifference(clusters, threeClusters()), std::nullopt);
    }
}

TEST(FirstDifference, IsFoundWhenAClusterIsMissingOrTooMany) {
    auto fewer = threeClusters();
    fewer.pop_back();
    EXPECT_NE(firstDifference(fewer, threeClusters()), std::nullopt);
    EXPECT_NE(firstDifference(threeClusters(), fewer), std::nullopt);
    EXPECT_NE(firstDifference({}, threeClusters()), std::nullopt);
}

TEST(FirstDifference, IsFoundInEveryField) {
    const std::vector<std::function<void(ClusterGeometry&)>> alterations = {
        [](ClusterGeometry& cluster) { cluster.x += 1; },
        [](ClusterGeometry& cluster) { cluster.y += 1; },
        [](ClusterGeometry& cluster) { cluster.z += 1; },
        [](ClusterGeometry& cluster) { cluster.width += 1; },
        [](ClusterGeometry& cluster) { cluster.height += 1; },
        [](ClusterGeometry& cluster) { cluster.depth += 1; },
        [](ClusterGeometry& cluster) { cluster.start_time += 1; },
        [](ClusterGeometry& cluster) { cluster.duration += 1; },
        [](ClusterGeometry& cluster) { cluster.timestamp += 1; }};
    for (const auto& alter : alterations) {
        auto clusters = threeClusters();
        alter(clusters.back());
        EXPECT_NE(firstDifference(clusters, threeClusters()), std::nullopt);
    }
}

}  // namespace
}  // namespace kelvora::test
