// SPDX-License-Identifier: MIT
#include "reference/density_clustering.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <vector>

#include "support/density_models.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Members = std::vector<std::vector<std::size_t>>;
using Boxes = std::vector<std::vector<float>>;

TEST(ReferenceDensity, OrdersMembersAsTheStepsDo) {
    // All in one leaf of the tree. 3 is taken first, and its partition exchanges 0 and 2.
    const auto points = line<Kind>({0, 1, 2, 3});
    EXPECT_EQ(literalClusters<Kind>(points, 9, 1, 1).clusters, (Members{{0, 3, 1, 2}}));
    // From 3, the partition makes 0 2 3 4 5 into 5 2 4: 4 is taken next, then 5 from there.
    const auto chain = line<Kind>({0, -1, 1, 2, 3, 4});
    EXPECT_EQ(literalClusters<Kind>(chain, 2.5, 1, 1).clusters, (Members{{0, 3, 4, 5, 2, 1}}));
}

TEST(ReferenceDensity, OrdersClustersByTheirFirstMembersWithManyJobs) {
    const auto found = literalClusters<Kind>(line<Kind>({9, 0, 1, 8, 20}), 1.5, 1, 3);
    EXPECT_EQ(found.clusters, (Members{{0, 3}, {1, 2}}));
    // The first member does not count for the largest coordinates.
    EXPECT_EQ(found.boxes, (Boxes{{8, 0, 0, 0}, {0, 0, 1, 0}}));
}

TEST(ReferenceDensity, CountsAPointAmongItsNeighboursOnlyWithOneJob) {
    const auto points = line<Kind>({0, 1, 2});
    EXPECT_EQ(literalClusters<Kind>(points, 1.5, 3, 1).clusters, (Members{{1, 2, 0}}));
    EXPECT_EQ(literalClusters<Kind>(points, 1.5, 3, 2).clusters, Members{});
}

TEST(ReferenceDensity, LeavesOutPointsThatAreNotFinite) {
    auto points = line<Kind>({0, std::numeric_limits<double>::infinity(), 1});
    points.push_back(at<Kind>(0, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(literalClusters<Kind>(points, 1.5, 1, 1).clusters, (Members{{0, 2}}));
    EXPECT_EQ(literalClusters<Kind>(points, 1.5, 1, 2).clusters, (Members{{0, 2}}));
}

TEST(ReferenceDensity, FindsTheClustersOfTheDefinition) {
    std::size_t clusters = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        Random random(seed);
        const auto points = randomGridPoints<Kind>(random, 60, -5, 11, 0.5);
        const int min_pts = randomInt(random, 1, 5);
        const auto one = withAscendingMembers(literalClusters<Kind>(points, 1.25, min_pts, 1));
        const auto many = literalClusters<Kind>(points, 1.25, min_pts, 2);
        ASSERT_EQ(inOrderOfFirstMembers(one),
                  inOrderOfFirstMembers(modelOfOneJob<Kind>(points, 1.25, min_pts)));
        ASSERT_EQ(many, modelOfManyJobs<Kind>(points, 1.25, min_pts));
        clusters += many.clusters.size();
    }
    EXPECT_GT(clusters, 200U);
}

}  // namespace
}  // namespace kelvora::test
