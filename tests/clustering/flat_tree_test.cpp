// SPDX-License-Identifier: MIT
#include "clustering/flat_tree.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "clustering/tree_walk.hpp"
#include "reference/kd_tree.hpp"
#include "support/density_cases.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

template <class Kind>
class FlatTrees : public ::testing::Test {
public:
    using T = typename Kind::T;
    using Tree = FlatTree<Kind::kDim, T>;

    /// The caller's indices of the neighbours, in traversal order.
    static std::vector<std::size_t> neighbours(const Tree& tree, TreeWalk<Kind::kDim, T>& walk,
                                               std::uint32_t slot) {
        std::vector<std::size_t> found;
        walk.neighboursOf(slot, [&](const LanesOfLeaf& near) {
            std::size_t count = 0;
            for (unsigned lane = 0; lane < Tree::kLanes; ++lane) {
                if ((near.lanes >> lane & 1U) != 0) {
                    found.push_back(tree.order[Tree::slotAt(near.leaf, lane)]);
                    ++count;
                }
            }
            EXPECT_EQ(count, near.count);
            return true;
        });
        return found;
    }
};
TYPED_TEST_SUITE(FlatTrees, PointKinds, PointKindNames);

TYPED_TEST(FlatTrees, MayBeEmpty) {
    typename TestFixture::Tree tree;
    tree.build({});
    EXPECT_EQ(tree.leaves(), 0U);
    EXPECT_EQ(tree.depth, 0U);
}

TYPED_TEST(FlatTrees, HoldOnlyThePointsOfTheLastTime) {
    typename TestFixture::Tree tree;
    tree.build(line<TypeParam>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    tree.build(line<TypeParam>({7, 8}));
    ASSERT_EQ(tree.leaves(), 1U);
    EXPECT_EQ(tree.points, 2U);
    EXPECT_EQ(tree.finite_lanes[0], 3U);
    EXPECT_EQ(tree.coordinatesAt(1)[0], 8);
}

TYPED_TEST(FlatTrees, KnowWhichPointsAreNotFinite) {
    typename TestFixture::Tree tree;
    tree.build(line<TypeParam>({1, std::numeric_limits<double>::infinity(), 3}));
    EXPECT_EQ(tree.finite_lanes[0], 5U);
    TreeWalk<TypeParam::kDim, typename TypeParam::T> walk(
        tree, std::numeric_limits<typename TypeParam::T>::infinity());
    EXPECT_EQ(this->neighbours(tree, walk, 0), (std::vector<std::size_t>{0, 2}));
}

TYPED_TEST(FlatTrees, AreWalkedAsNanoflannWalksItsOwn) {
    std::size_t found = 0;
    for (const Scatter scatter : kScatters) {
        for (std::uint64_t seed = 0; seed < 30; ++seed) {
            Random random(seed);
            const DensityCase<TypeParam> set(random, scatter, 600);
            const auto places = reference::finitePlaces(set.points);
            const reference::KDTree<TypeParam::kDim, typename TypeParam::T> nanoflann(places);
            typename TestFixture::Tree tree;
            tree.build(set.points);
            const auto radius = static_cast<typename TypeParam::T>(set.eps);
            TreeWalk<TypeParam::kDim, typename TypeParam::T> walk(tree, radius * radius);
            for (std::size_t leaf = 0; leaf < tree.leaves(); ++leaf) {
                const std::uint32_t slot = TestFixture::Tree::slotAt(leaf, 0);
                if (tree.isFinite(slot)) {
                    const auto neighbours = this->neighbours(tree, walk, slot);
                    ASSERT_EQ(neighbours, nanoflann.neighboursOf(tree.order[slot], radius))
                        << "seed " << seed << ": " << set;
                    found += neighbours.size();
                }
            }
        }
    }
    EXPECT_GT(found, 10'000U);
}

}  // namespace
}  // namespace kelvora::test
