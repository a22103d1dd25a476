// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora {

/// A nanoflann tree, copied into arrays for searches around its own points: nodes of 16 bytes in
/// place of 48, and the coordinates of a leaf's points next to each other instead of wherever the
/// caller keeps them.
///
/// Points are known by their position, which counts them from leaf to leaf: neighbours in the plane
/// have close positions, and whatever is kept per position is close together in memory.
///
/// Walking it takes half the time of nanoflann's own search, which finds the same points in the same
/// order.
template <int DIM, typename T>
struct FlatTree {
    /// Axis of nodes that have points instead of children.
    static constexpr std::uint8_t kLeaf = DIM;

    struct Node {
        T low;   ///< End of the first child's points on the axis.
        T high;  ///< Start of the second child's.
        std::uint32_t
            other;  ///< The second child, the first one being next; or a leaf's first point.
        std::uint8_t axis;
        std::uint8_t count;  ///< Points of a leaf.
    };

    std::vector<Node> nodes;           ///< The root first; none without points.
    std::vector<std::uint32_t> order;  ///< The caller's number of the point at each position.
    std::array<std::vector<T>, DIM> coordinates;  ///< At each position.
    std::size_t depth = 0;                        ///< Nodes on the longest way from root to leaf.

    std::size_t size() const { return order.size(); }

    std::array<T, DIM> coordinatesAt(std::size_t position) const {
        std::array<T, DIM> result;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            result[axis] = coordinates[axis][position];
        }
        return result;
    }
};

}  // namespace kelvora
