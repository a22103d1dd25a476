// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "clustering/flat_tree.hpp"
#include "clustering/lane_bits.hpp"
#include "clustering/tree_walk.hpp"

namespace kelvora {

/// Number of neighbours of a point, on average, from which `CrowdedExpansion` is faster than
/// `OrderedExpansion`.
constexpr std::size_t kManyNeighbours = 300;

/// Returns whether points have many neighbours on average, estimated from a sample: one in 512
/// points, from all over the tree. Takes less than a hundredth of the time of clustering.
///
/// A hot pixel that lies between two points of the sample has too few events to take long.
template <int DIM, typename T>
bool isCrowded(const FlatTree<DIM, T>& tree, T radius) {
    constexpr std::size_t kPointsPerSample = 512;
    using Tree = FlatTree<DIM, T>;
    const std::size_t samples = tree.points / kPointsPerSample;
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
