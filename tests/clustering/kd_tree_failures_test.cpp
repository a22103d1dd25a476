// SPDX-License-Identifier: MIT
// A tree without enough memory.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "kelvora/kd_tree.hpp"
#include "support/allocation_checks.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Tree = KDTree<2, float>;

std::size_t neighboursOfFirst(const Tree& tree) {
    std::vector<nanoflann::ResultItem<std::size_t, float>> results;
    return tree.radiusSearchIndex(1.5F, results, false, 0);
}

TEST(KDTreeWithoutMemory, IsEmptyAndCanBeBuiltAgain) {
    const Kind::Points few = line<Kind>({1, 2, 3});
    Random random(1);
    const Kind::Points many = randomGridPoints<Kind>(random, 500, 0, 1, 1);
    const auto make = [&] {
        auto tree = std::make_unique<Tree>();
        tree->build(few, 1);
        return tree;
    };
    const std::size_t failures = failEachAllocation(
        make, [&](std::unique_ptr<Tree>& tree) { tree->build(many, 1); },
        [&](std::unique_ptr<Tree>& tree) {
            EXPECT_EQ(neighboursOfFirst(*tree), 0U);
            std::vector<std::size_t> indices;
            std::vector<float> distances;
            EXPECT_EQ(tree->knnSearchPoint(2, indices, distances, few[0]), 0U);
            EXPECT_TRUE(tree->build(few, 1));
            EXPECT_EQ(neighboursOfFirst(*tree), 2U);
        });
    EXPECT_GE(failures, 3U);
}

}  // namespace
}  // namespace kelvora::test
