// SPDX-License-Identifier: MIT
// Density clustering without enough memory.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "support/allocation_checks.hpp"
#include "support/density_models.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Object = DensityClustering<2, float>;

/// Clusters two sets: in the first, another one fails.
void expectItIsRightAfterAnyFailure(const Kind::Points& points, const Kind::Points& others,
                                    std::size_t fewest_failures) {
    const auto expected = literalClusters<Kind>(others, 1.5, 3, 1);
    ASSERT_FALSE(expected.clusters.empty());
    Clustering<float> found;
    const auto cluster = [&](std::unique_ptr<Object>& object, const Kind::Points& some) {
        object->generateClustersMultiThread(some, found.clusters, found.boxes, 1);
    };
    const std::size_t failures = failEachAllocation(
        [&] {
            found = {};
            return std::make_unique<Object>(1.5, 3);
        },
        [&](std::unique_ptr<Object>& object) { cluster(object, points); },
        [&](std::unique_ptr<Object>& object) {
            cluster(object, others);
            EXPECT_EQ(found, expected);
        });
    EXPECT_GE(failures, fewest_failures);
}

class DensityClusteringWithoutMemory : public ::testing::Test {
protected:
    Random random{1};
    Kind::Points sparse = randomGridPoints<Kind>(random, 300, 0, 20, 1);
    Kind::Points crowded = randomGridPoints<Kind>(random, 1500, 0, 1, 1);
};

TEST_F(DensityClusteringWithoutMemory, CanBeUsedAgain) {
    expectItIsRightAfterAnyFailure(sparse, sparse, 20);
}

TEST_F(DensityClusteringWithoutMemory, CanBeUsedAgainForCrowdedPoints) {
    expectItIsRightAfterAnyFailure(crowded, crowded, 20);
    expectItIsRightAfterAnyFailure(crowded, sparse, 20);
    expectItIsRightAfterAnyFailure(sparse, crowded, 20);
}

}  // namespace
}  // namespace kelvora::test
