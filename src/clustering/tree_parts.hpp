// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "clustering/flat_tree.hpp"
#include "clustering/lane_bits.hpp"

namespace kelvora {

/// The parts of a tree: for each node, the box around the finite points below it, their number, and
/// how many of them are unvisited.
template <int DIM, typename T>
class TreeParts {
public:
    using Tree = FlatTree<DIM, T>;

    /// The finite points below a node. Without any, the box is not valid.
    struct Part {
        std::array<T, DIM> low;
        std::array<T, DIM> high;
        std::uint32_t points;
        std::uint32_t unvisited;
        std::uint32_t parent;  ///< Node number; the root is its own parent.
    };

    /// Prepares for the points of `tree`. All of them are unvisited.
    void reset(const Tree& tree) {
        parts.resize(tree.nodes.size());
        node_of_leaf.resize(tree.leaves());
        // Children have higher numbers than their parents.
        for (std::size_t node = parts.size(); node-- > 0;) {
            if (tree.nodes[node].axis == Tree::kLeaf) {
                const std::uint32_t leaf = tree.nodes[node].other;
                node_of_leaf[leaf] = static_cast<std::uint32_t>(node);
                parts[node] = partOfLeaf(tree, leaf);
            } else {
                const std::size_t first = node + 1;
                const std::size_t second = tree.nodes[node].other;
                parts[first].parent = static_cast<std::uint32_t>(node);
                parts[second].parent = static_cast<std::uint32_t>(node);
                parts[node] = unionOf(parts[first], parts[second]);
            }
        }
    }

    const Part& operator[](std::size_t node) const { return parts[node]; }

    /// Counts a point of a leaf as visited.
    void visit(std::size_t leaf) {
        std::uint32_t node = node_of_leaf[leaf];
        --parts[node].unvisited;
        while (node != 0) {
            node = parts[node].parent;
            --parts[node].unvisited;
        }
    }

    /// Whether all points of a part are closer to `center` than the root of `squared_distance`.
    /// Rounding keeps the order of differences, squares and sums, so this holds for the computed
    /// distances, too.
    bool isWithin(std::size_t node, const std::array<T, DIM>& center, T squared_distance) const {
        const Part& part = parts[node];
        T sum = 0;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const T farthest = std::max(std::abs(center[axis] - part.low[axis]),
                                        std::abs(center[axis] - part.high[axis]));
            sum += farthest * farthest;
        }
        return sum < squared_distance;
    }

private:
    static Part partOfLeaf(const Tree& tree, std::size_t leaf) {
        Part part{};
        part.low.fill(std::numeric_limits<T>::max());
        part.high.fill(std::numeric_limits<T>::lowest());
        part.points = countBits(tree.finite_lanes[leaf]);
        part.unvisited = part.points;
        forEachLane(tree.finite_lanes[leaf], [&](unsigned lane) {
            const auto point = tree.coordinatesAt(Tree::slotAt(leaf, lane));
            for (std::size_t axis = 0; axis < DIM; ++axis) {
                part.low[axis] = std::min(part.low[axis], point[axis]);
                part.high[axis] = std::max(part.high[axis], point[axis]);
            }
        });
        return part;
    }

    static Part unionOf(const Part& a, const Part& b) {
        Part part{};
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            part.low[axis] = std::min(a.low[axis], b.low[axis]);
            part.high[axis] = std::max(a.high[axis], b.high[axis]);
        }
        part.points = a.points + b.points;
        part.unvisited = part.points;
        return part;
    }

    std::vector<Part> parts;
    std::vector<std::uint32_t> node_of_leaf;
};

}  // namespace kelvora
