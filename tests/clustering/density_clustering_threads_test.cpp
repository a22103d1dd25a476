// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "support/density_models.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

class DensityClusteringWith : public ::testing::TestWithParam<int> {};

TEST_P(DensityClusteringWith, ManyJobsGivesTheSameHundredsOfTimes) {
    using Kind = PointKind<3, float>;
    Random random(1);
    const auto points = randomGridPoints<Kind>(random, 400, 0, 12, 1);
    const auto expected = modelOfManyJobs<Kind>(points, 1.5, 3);
    ASSERT_GT(expected.clusters.size(), 3U);
    DensityClustering<3, float> clustering(1.5, 3);
    Clustering<float> found;
    for (int run = 0; run < 334; ++run) {
        clustering.generateClustersMultiThread(points, found.clusters, found.boxes,
                                               static_cast<unsigned char>(GetParam()));
        ASSERT_EQ(inOrderOfFirstMembers(found), expected) << "run " << run;
    }
}

TEST_P(DensityClusteringWith, MoreJobsThanPointsLeavesSomeIdle) {
    using Kind = PointKind<2, double>;
    EXPECT_EQ(clusterPoints<Kind>(line<Kind>({0}), 1, 1, GetParam()).clusters.size(), 0U);
    EXPECT_EQ(clusterPoints<Kind>(line<Kind>({0, 0.5}), 1, 1, GetParam()).clusters.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Jobs, DensityClusteringWith, ::testing::Values(2, 4, 16));

TEST(DensityClusteringWithThreads, TakesTheLargestNumberOfJobs) {
    using Kind = PointKind<2, float>;
    Random random(2);
    const auto points = randomGridPoints<Kind>(random, 1000, 0, 40, 1);
    EXPECT_EQ(inOrderOfFirstMembers(clusterPoints<Kind>(points, 1.5, 3, 255)),
              modelOfManyJobs<Kind>(points, 1.5, 3));
}

// Each even position is joined under the next, which makes a chain of half a million links before
// the first look-up of its root.
TEST(DensityClusteringWithThreads, FollowsALineWhoseEvenPositionsComeBeforeTheOdd) {
    using Kind = PointKind<2, float>;
    constexpr std::size_t kCount = 1'000'000;
    Kind::Points points;
    points.reserve(kCount);
    for (const std::size_t start : {0U, 1U}) {
        for (std::size_t position = start; position < kCount; position += 2) {
            points.push_back(at<Kind>(static_cast<double>(position)));
        }
    }
    const auto found = clusterPoints<Kind>(points, 1.5, 2, 2);
    ASSERT_EQ(found.clusters.size(), 1U);
    ASSERT_EQ(found.clusters[0].size(), kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        ASSERT_EQ(found.clusters[0][i], i);
    }
    EXPECT_EQ(found.boxes[0], (std::vector<float>{0, 0, kCount - 1, 0}));
}

}  // namespace
}  // namespace kelvora::test
