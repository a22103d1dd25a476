// SPDX-License-Identifier: MIT
#include "support/density_models.hpp"

#include <gmock/gmock.h>

#include <vector>

#include "support/literal_density_pass.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Members = std::vector<std::vector<std::size_t>>;
using Boxes = std::vector<std::vector<float>>;

// Two groups of four with a point between them that touches one of each.
const Kind::Points kBridge = line<Kind>({0, 1, 2, 3, 5, 7, 8, 9, 10});

TEST(DensityModels, GiveHandWorkedClustersForOneJob) {
    const auto found = modelOfOneJob<Kind>(kBridge, 2.5, 4);
    EXPECT_EQ(found.clusters, (Members{{0, 1, 2, 3, 4}, {5, 6, 7, 8}}));
    EXPECT_EQ(found.boxes, (Boxes{{0, 0, 5, 0}, {7, 0, 3, 0}}));
}

TEST(DensityModels, GiveHandWorkedClustersForManyJobs) {
    const auto found = modelOfManyJobs<Kind>(kBridge, 2.5, 3);
    EXPECT_EQ(found.clusters, (Members{{0, 1, 2, 3, 4, 5, 6, 7, 8}}));
    EXPECT_EQ(found.boxes, (Boxes{{0, 0, 10, 0}}));
}

TEST(DensityModels, LeaveOutTheFirstPointFromTheLargestCoordinatesForManyJobs) {
    const auto found = modelOfManyJobs<Kind>(line<Kind>({-1, -2, -3}), 1.5, 1);
    EXPECT_EQ(found.boxes, (Boxes{{-3, 0, 3, 0}}));
    EXPECT_EQ(modelOfManyJobs<Kind>(line<Kind>({3, 2}), 1.5, 1).boxes, (Boxes{{2, 0, 0, 0}}));
}

TEST(DensityModels, DifferWhereTheRulesDiffer) {
    const auto points = line<Kind>({0, 1, 2});
    EXPECT_EQ(modelOfOneJob<Kind>(points, 1.5, 3).clusters, (Members{{0, 1, 2}}));
    EXPECT_EQ(modelOfManyJobs<Kind>(points, 1.5, 3).clusters, Members{});
}

TEST(DensityModels, DoNotCountPointsAtExactlyTheRadius) {
    EXPECT_EQ(modelOfOneJob<Kind>(line<Kind>({0, 2}), 2, 2).clusters, Members{});
    EXPECT_EQ(modelOfManyJobs<Kind>(line<Kind>({0, 2}), 2, 1).clusters, Members{});
}

TEST(DensityModels, FindNothingWithoutAPositiveNumberOfPoints) {
    EXPECT_EQ(modelOfOneJob<Kind>(kBridge, 9, 0).clusters, Members{});
    EXPECT_EQ(modelOfManyJobs<Kind>(kBridge, 9, -1).clusters, Members{});
}

TEST(DensityModels, TellWrongAnswersFromRightOnes) {
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

TEST(DensityModels, OrderMembersAsTheStepsDo) {
    // All in one leaf of the tree. 3 is taken first, and its partition exchanges 0 and 2.
    const auto points = line<Kind>({0, 1, 2, 3});
    EXPECT_EQ(LiteralDensityPass<Kind>(points, 9, 1).run(), (Members{{0, 3, 1, 2}}));
    // From 3, the partition makes 0 2 3 4 5 into 5 2 4: 4 is taken next, then 5 from there.
    const auto chain = line<Kind>({0, -1, 1, 2, 3, 4});
    EXPECT_EQ(LiteralDensityPass<Kind>(chain, 2.5, 1).run(), (Members{{0, 3, 4, 5, 2, 1}}));
}

}  // namespace
}  // namespace kelvora::test
