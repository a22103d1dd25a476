// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>

#include "clustering/flat_tree.hpp"
#include "clustering/lane_bits.hpp"
#include "clustering/tree_walk.hpp"

namespace kelvora {

/// Number of neighbours of a point, on average, from which `CrowdedExpansion` is faster than
/// `OrderedExpansion`.
constexpr std::size_t kManyNeighbours = 300;

/// Returns whether points have many neighbours on average. Counts the neighbours of a few points all
/// over the tree, in less than a hundredth of the time of clustering.
template <int DIM, typename T>
bool isCrowded(const FlatTree<DIM, T>& tree, T radius) {
    constexpr std::size_t kPointsPerSample = 512;
    constexpr std::size_t kMostSamples = 64;
    using Tree = FlatTree<DIM, T>;
    const std::size_t samples = std::min(tree.points / kPointsPerSample, kMostSamples);
    const std::size_t many = samples * kManyNeighbours;
    std::size_t count = 0;
    TreeWalk<DIM, T> walk(tree, radius * radius);
    for (std::size_t sample = 0; sample < samples && count < many; ++sample) {
        const std::size_t leaf = sample * tree.leaves() / samples;
        if (tree.finite_lanes[leaf] != 0) {
            const std::uint32_t slot = Tree::slotAt(leaf, lowestBit(tree.finite_lanes[leaf]));
            walk.neighboursOf(slot, [&](const LanesOfLeaf& near) {
                count += near.count;
                return count < many;
            });
        }
    }
    return samples > 0 && count >= many;
}

}  // namespace kelvora
