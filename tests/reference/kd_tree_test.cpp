// SPDX-License-Identifier: MIT
#include "reference/kd_tree.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <limits>
#include <vector>

#include "support/points.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = PointKind<2, float>;
using Tree = reference::KDTree<2, float>;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();

TEST(ReferenceKDTree, FindsPointsThatAreCloserThanTheRadius) {
    const auto points = line<Kind>({0, 2, 3, 7});
    const Tree tree(points);
    EXPECT_THAT(tree.neighboursOf(1, 2.0F), ElementsAre(1, 2));
    EXPECT_THAT(tree.neighboursOf(1, 2.5F), ElementsAre(0, 1, 2));
    EXPECT_THAT(tree.neighboursOf(1, 0.0F), IsEmpty());
}

TEST(ReferenceKDTree, FindsTheClosestPoint) {
    const auto points = line<Kind>({0, 4, 9});
    const Tree tree(points);
    std::vector<std::size_t> indices = {7};
    std::vector<float> squared_distances = {7};
    tree.nearest(indices, squared_distances, at<Kind>(6));
    EXPECT_THAT(indices, ElementsAre(1));
    EXPECT_THAT(squared_distances, ElementsAre(4));
    tree.nearest(indices, squared_distances, at<Kind>(1e30));
    EXPECT_THAT(indices, ElementsAre(0));
    EXPECT_THAT(squared_distances, ElementsAre(0));
}

TEST(FinitePlaces, HaveTheLargestNumberForCoordinatesThatAreNotFinite) {
    const auto places = reference::finitePlaces<2, float>(
        {at<Kind>(1, kInfinity), at<Kind>(-kInfinity, -2), at<Kind>(3, 4)});
    ASSERT_EQ(places.size(), 3U);
    EXPECT_THAT(places[0].coordinates, ElementsAre(1, kLargest));
    EXPECT_THAT(places[1].coordinates, ElementsAre(kLargest, -2));
    EXPECT_THAT(places[2].coordinates, ElementsAre(3, 4));
}

}  // namespace
}  // namespace kelvora::test
