// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/flat_tree.hpp"
#include "clustering/squared_distance.hpp"

namespace kelvora {

/// Walks to the leaves of a tree that a radius reaches, nearer ones first: in nanoflann's order, and
/// with its arithmetic, so that rounding takes the walk past the same leaves. Each thread needs a
/// walk of its own.
template <int DIM, typename T>
class TreeWalk {
public:
    TreeWalk(const FlatTree<DIM, T>& tree_, T squared_radius_)
        : tree(tree_), squared_radius(squared_radius_), branches(tree_.depth) {}

    /// Calls `onLeaf(begin, end)` with the positions of each leaf, until it returns false.
    template <class OnLeaf>
    void leavesAround(const std::array<T, DIM>& center, OnLeaf onLeaf) {
        Branch branch = {0, 0, {}};
        std::size_t waiting = 0;
        while (true) {
            const auto* node = &tree.nodes[branch.node];
            while (node->axis != FlatTree<DIM, T>::kLeaf) {
                const Branch farther = fartherChild(branch, *node, center);
                // Also false if it is not a number.
                if (farther.squared_distance <= squared_radius) {
                    branches[waiting++] = farther;
                }
                node = &tree.nodes[branch.node];
            }
            if (!onLeaf(node->other, node->other + node->count) || waiting == 0) {
                return;
            }
            branch = branches[--waiting];
        }
    }

    /// Writes the positions of all points closer than the radius, and returns the end. There must
    /// be room for all points of the tree.
    std::uint32_t* neighboursOf(std::size_t position, std::uint32_t* out) {
        const auto center = tree.coordinatesAt(position);
        leavesAround(center, [&](std::uint32_t begin, std::uint32_t end) {
            for (std::uint32_t k = begin; k < end; ++k) {
                *out = k;  // without a branch
                out += isNear(center, k) ? 1 : 0;
            }
            return true;
        });
        return out;
    }

    bool isNear(const std::array<T, DIM>& center, std::uint32_t position) const {
        return squaredDistance<DIM>(center, tree.coordinatesAt(position)) < squared_radius;
    }

private:
    /// A node, and how far from the centre the points of it are at least.
    struct Branch {
        std::uint32_t node;
        T squared_distance;
        std::array<T, DIM> squared_sides;  ///< What each axis adds to it.
    };

    /// Goes on to the nearer child, and returns the other.
    static Branch fartherChild(Branch& branch, const typename FlatTree<DIM, T>::Node& node,
                               const std::array<T, DIM>& center) {
        const T value = center[node.axis];
        const T beyond_low = value - node.low;
        const T beyond_high = value - node.high;
        const bool is_first_nearer = beyond_low + beyond_high < 0;
        const T difference = is_first_nearer ? beyond_high : beyond_low;
        const T squared_side = difference * difference;
        Branch farther = branch;
        T& side = farther.squared_sides[node.axis];
        // In this order: both roundings count.
        farther.squared_distance = branch.squared_distance + squared_side - side;
        side = squared_side;
        farther.node = is_first_nearer ? node.other : branch.node + 1;
        branch.node = is_first_nearer ? branch.node + 1 : node.other;
        return farther;
    }

    const FlatTree<DIM, T>& tree;
    T squared_radius;
    std::vector<Branch> branches;  ///< Still to be walked, the next one last.
};

}  // namespace kelvora
