// SPDX-License-Identifier: MIT
#include "reference/brute_force_density_clustering.hpp"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

#include "support/density_models.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Members = std::vector<std::vector<std::size_t>>;
using Boxes = std::vector<std::vector<float>>;

// Two groups of four with a point between them that touches one of each.
const Kind::Points kBridge = line<Kind>({0, 1, 2, 3, 5, 7, 8, 9, 10});

TEST(BruteForceDensity, GivesClustersComputedByHandForOneJob) {
    const auto found = modelOfOneJob<Kind>(kBridge, 2.5, 4);
    EXPECT_EQ(found.clusters, (Members{{0, 1, 2, 3, 4}, {5, 6, 7, 8}}));
    EXPECT_EQ(found.boxes, (Boxes{{0, 0, 5, 0}, {7, 0, 3, 0}}));
}

TEST(BruteForceDensity, GivesClustersComputedByHandForManyJobs) {
    const auto found = modelOfManyJobs<Kind>(kBridge, 2.5, 3);
    EXPECT_EQ(found.clusters, (Members{{0, 1, 2, 3, 4, 5, 6, 7, 8}}));
    EXPECT_EQ(found.boxes, (Boxes{{0, 0, 10, 0}}));
}

TEST(BruteForceDensity, LeavesOutTheFirstPointFromTheLargestCoordinatesForManyJobs) {
    const auto found = modelOfManyJobs<Kind>(line<Kind>({-1, -2, -3}), 1.5, 1);
    EXPECT_EQ(found.boxes, (Boxes{{-3, 0, 3, 0}}));
    EXPECT_EQ(modelOfManyJobs<Kind>(line<Kind>({3, 2}), 1.5, 1).boxes, (Boxes{{2, 0, 0, 0}}));
}

TEST(BruteForceDensity, DiffersWhereTheRulesDiffer) {
    const auto points = line<Kind>({0, 1, 2});
    EXPECT_EQ(modelOfOneJob<Kind>(points, 1.5, 3).clusters, (Members{{0, 1, 2}}));
    EXPECT_EQ(modelOfManyJobs<Kind>(points, 1.5, 3).clusters, Members{});
}

TEST(BruteForceDensity, DoesNotCountPointsAtExactlyTheRadius) {
    EXPECT_EQ(modelOfOneJob<Kind>(line<Kind>({0, 2}), 2, 2).clusters, Members{});
    EXPECT_EQ(modelOfManyJobs<Kind>(line<Kind>({0, 2}), 2, 1).clusters, Members{});
}

TEST(BruteForceDensity, FindsNothingWithoutAPositiveNumberOfPoints) {
    EXPECT_EQ(modelOfOneJob<Kind>(kBridge, 9, 0).clusters, Members{});
    EXPECT_EQ(modelOfManyJobs<Kind>(kBridge, 9, -1).clusters, Members{});
}

TEST(BruteForceDensity, GivesResultsThatDistinguishWrongAnswersFromRightOnes) {
    const auto right = modelOfOneJob<Kind>(kBridge, 2.5, 4);
    auto other_cluster = right;
    other_cluster.clusters[0].pop_back();
    other_cluster.clusters[1].push_back(4);
    EXPECT_FALSE(withAscendingMembers(other_cluster) == right);
    auto other_box = right;
    other_box.boxes[1][2] += 1;
    EXPECT_FALSE(other_box == right);
    auto other_order = right;
    std::swap(other_order.clusters[0], other_order.clusters[1]);
    std::swap(other_order.boxes[0], other_order.boxes[1]);
    EXPECT_FALSE(other_order == right);
    EXPECT_EQ(inOrderOfFirstMembers(other_order), right);
}

}  // namespace
}  // namespace kelvora::test
