// SPDX-License-Identifier: MIT
#include "clustering/nearest_centroid.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "support/points.hpp"

namespace kelvora::test {
namespace {

/// A number in [0, 1], usually small.
double randomPart(Random& random) {
    const double part = randomInt(random, 0, 1'000'000) * 1e-6;
    return part * part;
}

/// Compares with each centroid.
template <class Kind>
typename NearestCentroid<Kind::kDim, typename Kind::T>::Result nearestByForce(
    const typename Kind::Points& centroids, const typename Kind::Point& point) {
    typename NearestCentroid<Kind::kDim, typename Kind::T>::Result nearest{};
    nearest.squared_distance = std::numeric_limits<typename Kind::T>::infinity();
    for (std::size_t c = 0; c < centroids.size(); ++c) {
        typename Kind::T squared_distance = 0;
        for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
            const auto difference = point.coordinates[axis] - centroids[c].coordinates[axis];
            squared_distance += difference * difference;
        }
        if (squared_distance < nearest.squared_distance) {
            nearest = {c, squared_distance, false};
        } else if (squared_distance == nearest.squared_distance) {
            nearest.is_tied = true;
        }
    }
    return nearest;
}

template <class Kind>
class NearestCentroidByItself : public ::testing::Test {
public:
    using Points = typename Kind::Points;

    /// Returns how many points have several equally near centroids.
    static int compareWithForce(const Points& points, const Points& centroids) {
        NearestCentroid<Kind::kDim, typename Kind::T> tested(points, centroids.size());
        tested.setCentroids(centroids);
        int ties = 0;
        std::size_t too_many_around = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const auto expected = nearestByForce<Kind>(centroids, points[i]);
            const auto found = tested.find(points[i], i);
            if (expected.is_tied) {
                ++ties;
                EXPECT_TRUE(found.is_tied) << "point " << i;
            } else if (found.is_tied) {
                ++too_many_around;
            } else {
                EXPECT_EQ(found.index, expected.index) << "point " << i;
                EXPECT_EQ(found.squared_distance, expected.squared_distance) << "point " << i;
            }
        }
        EXPECT_LE(too_many_around, centroids.size() > 64 ? points.size() / 10 : 0);
        return ties;
    }

    static Points unevenPoints(Random& random, std::size_t count, double side) {
        Points points(count);
        for (auto& point : points) {
            const double x = side * randomPart(random);
            const double y = side * randomPart(random);
            point = at<Kind>(x, y, side * randomPart(random));
        }
        return points;
    }
};
TYPED_TEST_SUITE(NearestCentroidByItself, PointKinds, PointKindNames);

TYPED_TEST(NearestCentroidByItself, IsTheSameAsByComparingWithAllForUnevenPoints) {
    for (int seed = 0; seed < 12; ++seed) {
        Random random(static_cast<std::uint64_t>(seed));
        const auto points = this->unevenPoints(random, 4000, 1000);
        for (const std::size_t k : {1U, 2U, 9U, 40U, 150U}) {
            this->compareWithForce(points, this->unevenPoints(random, k, 1000));
        }
        ASSERT_FALSE(this->HasFailure()) << "seed " << seed;
    }
}

TYPED_TEST(NearestCentroidByItself, IsTiedWhereSeveralAreEquallyNear) {
    int ties = 0;
    for (std::uint64_t seed = 0; seed < 12; ++seed) {
        Random random(seed);
        const auto points = randomGridPoints<TypeParam>(random, 4000, 0, 30, 1);
        ties += this->compareWithForce(points, randomGridPoints<TypeParam>(random, 40, 0, 30, 1));
        ties +=
            this->compareWithForce(points, randomGridPoints<TypeParam>(random, 40, -90, 200, 0.5));
        ASSERT_FALSE(this->HasFailure()) << "seed " << seed;
    }
    EXPECT_GT(ties, 1000);
}

// With centroids at equal distances all around, only rounding decides.
TYPED_TEST(NearestCentroidByItself, IsTheSameAsByComparingWithAllForCentroidsOnACircle) {
    Random random(3);
    auto points = this->unevenPoints(random, 4000, 1e-3);
    for (const double radius : {0.01, 1.0, 300.0}) {
        typename TypeParam::Points centroids;
        for (int i = 0; i < 60; ++i) {
            centroids.push_back(at<TypeParam>(radius * std::cos(i), radius * std::sin(i)));
        }
        this->compareWithForce(points, centroids);
    }
}

TYPED_TEST(NearestCentroidByItself, IsTheSameAsByComparingWithAllForPointsWithoutExtent) {
    Random random(4);
    const auto centroids = this->unevenPoints(random, 40, 10);
    this->compareWithForce(typename TypeParam::Points(500, at<TypeParam>(3, 4, 5)), centroids);
    typename TypeParam::Points line_of_points;
    for (int i = 0; i < 500; ++i) {
        line_of_points.push_back(at<TypeParam>(0.01 * i, 7, 7));
    }
    this->compareWithForce(line_of_points, centroids);
    // The division gives infinity. -fsanitize=float-cast-overflow would detect a cast of it.
    const double hardly_apart = std::numeric_limits<typename TypeParam::T>::denorm_min();
    for (int i = 0; i < 500; ++i) {
        line_of_points.push_back(at<TypeParam>(0.01 * i, hardly_apart * i, hardly_apart));
    }
    line_of_points.erase(line_of_points.begin(), line_of_points.begin() + 500);
    this->compareWithForce(line_of_points, centroids);
}

TYPED_TEST(NearestCentroidByItself, IsTheSameAsByComparingWithAllFarFromTheOrigin) {
    Random random(5);
    auto points = this->unevenPoints(random, 4000, 1000);
    auto centroids = this->unevenPoints(random, 60, 1000);
    for (auto* set : {&points, &centroids}) {
        for (auto& point : *set) {
            for (auto& coordinate : point.coordinates) {
                coordinate += static_cast<typename TypeParam::T>(1e7);
            }
        }
    }
    this->compareWithForce(points, centroids);
}

TYPED_TEST(NearestCentroidByItself, LeavesPointsThatAreNotFiniteToTheTree) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {infinity, -infinity, std::nan(""), 1e30 * 1e80}) {
        typename TypeParam::Points points(100, at<TypeParam>(1, 2, 3));
        points[50] = at<TypeParam>(1, value, 3);
        NearestCentroid<TypeParam::kDim, typename TypeParam::T> tested(points, 2);
        tested.setCentroids({at<TypeParam>(0), at<TypeParam>(9)});
        EXPECT_TRUE(tested.find(points[0], 0).is_tied) << value;
    }
}

// Parts are then as large as the distances between all other points.
TYPED_TEST(NearestCentroidByItself, LeavesPointsWithVeryManyCentroidsAroundThemToTheTree) {
    Random random(6);
    auto points = this->unevenPoints(random, 4000, 1);
    points.push_back(at<TypeParam>(1e6, 1e6, 1e6));
    const auto is_left_to_tree = [&](std::size_t k) {
        const auto centroids = this->unevenPoints(random, k, 1);
        NearestCentroid<TypeParam::kDim, typename TypeParam::T> tested(points, k);
        tested.setCentroids(centroids);
        std::size_t count = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            count += tested.find(points[i], i).is_tied ? 1U : 0U;
        }
        return count;
    };
    EXPECT_LT(is_left_to_tree(40), 100U);
    EXPECT_GE(is_left_to_tree(200), 4000U);
}

}  // namespace
}  // namespace kelvora::test
