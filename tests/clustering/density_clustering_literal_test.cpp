// SPDX-License-Identifier: MIT
// The library beside the literal model of its passes, on sets of points of many kinds.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

#include "support/density_cases.hpp"
#include "support/density_models.hpp"
#include "support/points.hpp"
#include "support/rounds.hpp"

namespace kelvora::test {
namespace {

template <class Kind>
class LiteralPasses : public ::testing::Test {
public:
    /// Returns whether there are any clusters.
    static bool compare(const DensityCase<Kind>& set, int jobs) {
        const auto found = clusterPoints<Kind>(set.points, set.eps, set.min_pts, jobs);
        const auto in_order = jobs == 1 ? found : inOrderOfFirstMembers(found);
        EXPECT_EQ(in_order, literalClusters<Kind>(set.points, set.eps, set.min_pts, jobs))
            << "jobs " << jobs;
        return !found.clusters.empty();
    }

    static void compareMany(int count, std::size_t most_points) {
        forRandomCases<Kind>(count, most_points, count / 8 + 1, [](const auto& set) {
            const bool has_clusters = compare(set, 1);
            return compare(set, 2) && has_clusters;
        });
    }
};
TYPED_TEST_SUITE(LiteralPasses, PointKinds, PointKindNames);

TYPED_TEST(LiteralPasses, FindTheSameInSmallSets) {
    this->compareMany(rounds(300), 120);
}

TYPED_TEST(LiteralPasses, FindTheSameInLargerSets) {
    this->compareMany(rounds(20), 3000);
}

/// Points all over a space that is long in its last axis, and some in ten clumps, each denser than
/// the next.
template <class Kind>
DensityCase<Kind> sparseCase(Random& random, double points_per_cube) {
    constexpr std::size_t kCount = 4000;
    constexpr std::size_t kPointsPerClump = 400;
    constexpr double kLength = 20;
    DensityCase<Kind> set(random, Scatter::kUniform, 1);
    const double side = std::pow(kCount / kLength / points_per_cube, 1.0 / Kind::kDim);
    const auto uniform = [&](double high) {
        return std::uniform_real_distribution<double>(0, high)(random);
    };
    set.points.clear();
    for (std::size_t i = 0; i < kCount; ++i) {
        const double y = uniform(Kind::kDim == 2 ? kLength * side : side);
        set.points.push_back(at<Kind>(uniform(side), y, uniform(kLength * side)));
        const std::size_t clump = i / kPointsPerClump;
        if (i % 10 == 1) {
            const auto& center = set.points[clump * kPointsPerClump].coordinates;
            for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
                const double away = uniform(0.5 + 0.2 * static_cast<double>(clump));
                set.points[i].coordinates[axis] =
                    center[axis] + static_cast<typename Kind::T>(away);
            }
        }
    }
    set.eps = 1;
    set.min_pts = 5;
    return set;
}

// From a few points in each cell to so many that smaller cells are used.
TYPED_TEST(LiteralPasses, FindTheSameForAnyDensityOfPoints) {
    for (const double points_per_cube : {0.1, 0.5, 1.0, 3.0, 8.0, 12.0, 16.0, 30.0}) {
        Random random(static_cast<std::uint64_t>(10 * points_per_cube));
        const auto set = sparseCase<TypeParam>(random, points_per_cube);
        for (const int jobs : {2, 3, 8}) {
            EXPECT_TRUE(this->compare(set, jobs));
            ASSERT_FALSE(testing::Test::HasFailure()) << points_per_cube << ", jobs " << jobs;
        }
    }
}

}  // namespace
}  // namespace kelvora::test
