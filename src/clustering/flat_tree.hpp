// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora {

/// The tree that nanoflann would build, node by node and point by point, in arrays for searches
/// around its own points: nodes of 16 bytes in place of 48, and the coordinates of a leaf's points
/// next to each other instead of wherever the caller keeps them, axis by axis, so that several are
/// compared at a time.
///
/// Leaves are numbered in the order of the tree, and points known by their slot, which says their
/// leaf and their lane in it: neighbours have close slots, and a leaf's neighbours are a few bits.
///
/// A search in it takes about half the time of nanoflann's, which finds the same points in the same
/// order, and building it half the time of building nanoflann's and copying it.
template <int DIM, typename T>
class FlatTree {
public:
    using Point = KDPoint<DIM, T>;

    /// Axis of nodes that are leaves.
    static constexpr std::uint8_t kLeaf = DIM;
    /// Points that a leaf can hold, and lanes it has, which are compared together.
    static constexpr std::size_t kLeafMaxSize = 10;
    static constexpr std::size_t kLanes = 12;
    static constexpr unsigned kLaneBits = 4;

    struct Node {
        T low;                ///< End of the first child's points on the axis.
        T high;               ///< Start of the second child's.
        std::uint32_t other;  ///< The second child, the first one being next; or the leaf's number.
        std::uint8_t axis;
    };

    static std::uint32_t slotAt(std::size_t leaf, unsigned lane) {
        return static_cast<std::uint32_t>(leaf) << kLaneBits | lane;
    }
    static std::size_t leafOf(std::uint32_t slot) { return slot >> kLaneBits; }
    static unsigned laneOf(std::uint32_t slot) { return slot & ((1U << kLaneBits) - 1); }

    /// Takes in `points`. Those that are not finite stand at the largest number, as in `KDTree`, but
    /// are never found.
    void build(const std::vector<Point>& points);

    std::size_t leaves() const { return finite_lanes.size(); }

    const T* lanesOf(std::size_t leaf) const { return lanes.data() + leaf * DIM * kLanes; }

    std::array<T, DIM> coordinatesAt(std::uint32_t slot) const {
        std::array<T, DIM> result;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            result[axis] = lanesOf(leafOf(slot))[axis * kLanes + laneOf(slot)];
        }
        return result;
    }

    bool isFinite(std::uint32_t slot) const {
        return (finite_lanes[leafOf(slot)] >> laneOf(slot) & 1U) != 0;
    }

    std::vector<Node> nodes;  ///< The root first; none without points.
    std::vector<T> lanes;     ///< Not a number where there is no point, or none that is finite.
    std::vector<std::uint32_t> order;         ///< The caller's number of the point in each slot.
    std::vector<std::uint16_t> finite_lanes;  ///< One bit for each finite point of a leaf.
    std::size_t points = 0;
    std::size_t depth = 0;  ///< Nodes on the longest way from root to leaf.

private:
    /// A point while the tree is built.
    struct Entry {
        std::array<T, DIM> coordinates;
        std::uint32_t number;
        bool is_finite;
    };
    /// Consecutive entries.
    struct Range {
        Entry* begin;
        Entry* end;
    };
    /// Smallest and largest coordinates.
    struct Bounds {
        std::array<T, DIM> low;
        std::array<T, DIM> high;
    };
    struct Cut {
        std::size_t axis;
        T value;
    };

    static std::vector<Entry> entriesOf(const std::vector<Point>& points);
    static Bounds boundsOf(Range range);
    static Cut chooseCut(Range range, const Bounds& bounds);
    static Entry* divide(Range range, const Cut& cut);
    std::size_t addNode(Range range, Bounds& bounds);
    std::size_t addLeaf(Range range);
};

extern template class FlatTree<2, float>;
extern template class FlatTree<2, double>;
extern template class FlatTree<3, float>;
extern template class FlatTree<3, double>;

}  // namespace kelvora
