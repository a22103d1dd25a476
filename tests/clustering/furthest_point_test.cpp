// SPDX-License-Identifier: MIT
#include "clustering/furthest_point.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/points.hpp"

namespace kelvora::test {
namespace {

/// Recomputes all distances, each with a square root, and narrows them.
template <class Kind>
std::size_t furthestByForce(const typename Kind::Points& points,
                            const typename Kind::Points& centroids) {
    std::size_t furthest = 0;
    float largest = 0.0F;
    for (std::size_t i = 0; i < points.size(); ++i) {
        auto nearest = static_cast<float>(points[i].euclideanDistance(centroids.front()));
        for (const auto& centroid : centroids) {
            nearest = std::min(nearest, static_cast<float>(points[i].euclideanDistance(centroid)));
        }
        if (nearest > largest) {
            largest = nearest;
            furthest = i;
        }
    }
    return furthest;
}

template <class Kind>
class FurthestPointByItself : public ::testing::Test {
public:
    static void compareWithForce(const typename Kind::Points& points, std::size_t k) {
        typename Kind::Points centroids = {points.back()};
        FurthestPoint<Kind::kDim, typename Kind::T> tested(points, centroids.front());
        while (centroids.size() < k) {
            ASSERT_EQ(tested.index(), furthestByForce<Kind>(points, centroids));
            centroids.push_back(points[tested.index()]);
            tested.addCentroid(centroids.back());
        }
    }
};
TYPED_TEST_SUITE(FurthestPointByItself, PointKinds, PointKindNames);

TYPED_TEST(FurthestPointByItself, IsTheFirstOfSeveralEquallyFar) {
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        Random random(seed);
        this->compareWithForce(randomGridPoints<TypeParam>(random, 500, 0, 12, 0.1), 30);
    }
}

// In `double`, many distances differ by less than the precision of `float`.
TYPED_TEST(FurthestPointByItself, IsTheFirstOfThoseThatFloatCannotTellApart) {
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        Random random(seed);
        auto points = randomGridPoints<TypeParam>(random, 500, 0, 5, 1);
        for (auto& point : points) {
            point.coordinates[0] +=
                static_cast<typename TypeParam::T>(1e-9 * randomInt(random, -20, 20));
        }
        this->compareWithForce(points, 30);
    }
}

TYPED_TEST(FurthestPointByItself, IsTheFirstPointIfAllCoincideWithCentroids) {
    const typename TypeParam::Points points(20, at<TypeParam>(1, 2, 3));
    const FurthestPoint<TypeParam::kDim, typename TypeParam::T> tested(points, points.front());
    EXPECT_EQ(tested.index(), 0U);
}

}  // namespace
}  // namespace kelvora::test
