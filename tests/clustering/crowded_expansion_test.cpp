// SPDX-License-Identifier: MIT
#include "clustering/crowded_expansion.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "clustering/crowding.hpp"
#include "support/density_cases.hpp"
#include "support/density_models.hpp"
#include "support/points.hpp"
#include "support/rounds.hpp"

namespace kelvora::test {
namespace {

template <class Kind>
class CrowdedExpansions : public ::testing::Test {
public:
    using T = typename Kind::T;
    using Points = typename Kind::Points;

    /// The clusters that the class finds, crowded or not.
    static Clustering<T> cluster(const Points& points, double eps, int min_pts) {
        Clustering<T> result;
        FlatTree<Kind::kDim, T> tree;
        tree.build(points);
        CrowdedExpansion<Kind::kDim, T> expansion(tree);
        expansion.run(points, static_cast<T>(eps), static_cast<std::size_t>(min_pts),
                      result.clusters, result.boxes);
        return result;
    }

    /// Returns whether there are any clusters.
    static bool compare(const Points& points, double eps, int min_pts) {
        const auto found = cluster(points, eps, min_pts);
        EXPECT_EQ(found, literalClusters<Kind>(points, eps, min_pts, 1));
        return !found.clusters.empty();
    }

    static void compareMany(int count, std::size_t most_points) {
        forRandomCases<Kind>(count, most_points, count / 20 + 1, [](const auto& set) {
            return compare(set.points, set.eps, set.min_pts);
        });
    }
};
TYPED_TEST_SUITE(CrowdedExpansions, PointKinds, PointKindNames);

TYPED_TEST(CrowdedExpansions, FindNothingWithoutPoints) {
    EXPECT_TRUE(this->cluster({}, 1, 1).clusters.empty());
}

TYPED_TEST(CrowdedExpansions, FindTheSameAsTheModelInSmallSets) {
    this->compareMany(rounds(300), 120);
}

TYPED_TEST(CrowdedExpansions, FindTheSameAsTheModelInLargerSets) {
    this->compareMany(rounds(20), 2000);
}

// From one pixel, all of whose points are neighbours, to a block much larger than the radius. Some
// distances between pixels are exactly the radius.
TYPED_TEST(CrowdedExpansions, FindTheSameAsTheModelInFlickeringBlocks) {
    for (const int side : {1, 2, 4, 8, 16, 40}) {
        for (const double eps : {1.0, 5.0, 10.0}) {
            Random random(static_cast<std::uint64_t>(side));
            const auto points = randomGridPoints<TypeParam>(random, 600, -3, side, 1);
            for (const int min_pts : {1, 10, 160, 600}) {
                this->compare(points, eps, min_pts);
                ASSERT_FALSE(testing::Test::HasFailure()) << side << ", " << eps << ", " << min_pts;
            }
        }
    }
}

TYPED_TEST(CrowdedExpansions, FindTheSameAsTheModelWithPointsThatAreNotFinite) {
    using Number = typename TypeParam::T;
    Random random(3);
    auto points = randomGridPoints<TypeParam>(random, 1000, 0, 6, 1);
    for (std::size_t i = 0; i < points.size(); i += 7) {
        points[i].coordinates[i % 2] = i % 3 == 0 ? std::numeric_limits<Number>::quiet_NaN()
                                                  : std::numeric_limits<Number>::infinity();
    }
    for (const double eps : {2.5, 100.0, 1e30}) {
        EXPECT_TRUE(this->compare(points, eps, 5));
    }
}

TYPED_TEST(CrowdedExpansions, CanBeUsedAgainForFewerPoints) {
    Random random(4);
    const auto many = randomGridPoints<TypeParam>(random, 1000, 0, 5, 1);
    const auto few = randomGridPoints<TypeParam>(random, 50, 0, 5, 1);
    FlatTree<TypeParam::kDim, typename TypeParam::T> tree;
    CrowdedExpansion<TypeParam::kDim, typename TypeParam::T> expansion(tree);
    for (const auto& points : {many, few, many}) {
        Clustering<typename TypeParam::T> found;
        tree.build(points);
        expansion.run(points, 2, 3, found.clusters, found.boxes);
        EXPECT_EQ(found, literalClusters<TypeParam>(points, 2, 3, 1));
    }
}

template <class Kind>
bool areCrowded(const typename Kind::Points& points, double eps) {
    FlatTree<Kind::kDim, typename Kind::T> tree;
    tree.build(points);
    return isCrowded(tree, static_cast<typename Kind::T>(eps));
}

TYPED_TEST(CrowdedExpansions, AreForPointsWithManyNeighbours) {
    Random random(5);
    const std::size_t count = 100 * kManyNeighbours;
    const auto in_a_pixel = randomGridPoints<TypeParam>(random, count, 0, 1, 1);
    const auto spread_out = randomGridPoints<TypeParam>(random, count, 0, 2000, 1);
    EXPECT_TRUE(areCrowded<TypeParam>(in_a_pixel, 1));
    EXPECT_FALSE(areCrowded<TypeParam>(spread_out, 10));
    auto mixed = spread_out;
    mixed.insert(mixed.end(), in_a_pixel.begin(), in_a_pixel.begin() + count / 4);
    EXPECT_TRUE(areCrowded<TypeParam>(mixed, 10));
}

// The pixel has one in eighty points. A sample of fixed size may miss it.
TEST(CrowdedExpansion, IsForAHotPixelAmongMillionsOfOtherPoints) {
    using Kind = PointKind<2, float>;
    Random random(7);
    auto points = randomGridPoints<Kind>(random, 2'000'000, 0, 4000, 1);
    EXPECT_FALSE(areCrowded<Kind>(points, 1));
    std::fill_n(points.begin(), 26'000, at<Kind>(100, 100));
    EXPECT_TRUE(areCrowded<Kind>(points, 1));
}

TYPED_TEST(CrowdedExpansions, AreNotForFewPointsOrWithoutAny) {
    Random random(6);
    EXPECT_FALSE(areCrowded<TypeParam>(randomGridPoints<TypeParam>(random, 100, 0, 1, 1), 1));
    EXPECT_FALSE(areCrowded<TypeParam>({}, 1));
}

}  // namespace
}  // namespace kelvora::test
