// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora {

/// The tree that nanoflann would build, node by node and point by point, stored in arrays for
/// searches around its own points. Nodes have 16 bytes instead of 48. The coordinates of a leaf's
/// points are contiguous, axis by axis, so that several points are compared at a time.
///
/// Leaves are numbered in the order of the tree. A point is identified by its slot: its leaf, and
/// its lane in the leaf. Neighbours have close slots, and the neighbours in a leaf are a few bits.
///
/// A search takes about half the time of nanoflann's, and finds the same points in the same order.
/// Building takes half the time of building nanoflann's tree and copying it.
template <int DIM, typename T>
class FlatTree {
public:
    using Point = KDPoint<DIM, T>;

    /// The axis of a leaf.
    static constexpr std::uint8_t kLeaf = DIM;
    /// Most points in a leaf.
    static constexpr std::size_t kLeafMaxSize = 10;
    /// Lanes in a leaf, which are compared together. Some are unused.
    static constexpr std::size_t kLanes = 12;
    static constexpr unsigned kLaneBits = 4;
    /// Not the slot of any point.
    static constexpr std::uint32_t kNoSlot = std::numeric_limits<std::uint32_t>::max();

    struct Node {
        T low;                ///< End of the first child's points on the axis.
        T high;               ///< Start of the second child's.
        std::uint32_t other;  ///< The second child, or the leaf number. The first child is next.
        std::uint8_t axis;

        /// Whether a walk around a point with this coordinate visits the first child first. The
        /// arithmetic is nanoflann's: in a tie, its rounding decides.
        bool isFirstNearer(T value) const { return (value - low) + (value - high) < 0; }
    };

    static std::uint32_t slotAt(std::size_t leaf, unsigned lane) {
        return static_cast<std::uint32_t>(leaf) << kLaneBits | lane;
    }
    static std::size_t leafOf(std::uint32_t slot) { return slot >> kLaneBits; }
    static unsigned laneOf(std::uint32_t slot) { return slot & ((1U << kLaneBits) - 1); }

    /// A set of points: one bit for each lane of each leaf.
    using SlotSet = std::vector<std::uint16_t>;

    static bool contains(const SlotSet& set, std::uint32_t slot) {
        return (set[leafOf(slot)] >> laneOf(slot) & 1U) != 0;
    }
    static void remove(SlotSet& set, std::uint32_t slot) {
        std::uint16_t& lanes = set[leafOf(slot)];
        lanes = static_cast<std::uint16_t>(lanes & ~(1U << laneOf(slot)));
    }

    /// Builds the tree of `points`. As in `KDTree`, the largest number replaces coordinates that
    /// are not finite; but such points are never found.
    void build(const std::vector<Point>& points);

    std::size_t leaves() const { return finite_lanes.size(); }

    /// Slots are less than this number.
    std::size_t slots() const { return leaves() << kLaneBits; }

    /// Writes the slot of each of the caller's points, `kNoSlot` for those that are not finite.
    void listSlots(std::vector<std::uint32_t>& slot_of) const;

    /// The children of an inner node in the order in which a walk around `center` visits them.
    std::pair<std::uint32_t, std::uint32_t> childrenFrom(const std::array<T, DIM>& center,
                                                         std::uint32_t number) const {
        const Node& node = nodes[number];
        const std::uint32_t first = number + 1;
        return node.isFirstNearer(center[node.axis]) ? std::pair(first, node.other)
                                                     : std::pair(node.other, first);
    }

    const T* lanesOf(std::size_t leaf) const { return lanes.data() + leaf * DIM * kLanes; }

    std::array<T, DIM> coordinatesAt(std::uint32_t slot) const {
        std::array<T, DIM> result;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            result[axis] = lanesOf(leafOf(slot))[axis * kLanes + laneOf(slot)];
        }
        return result;
    }

    bool isFinite(std::uint32_t slot) const { return contains(finite_lanes, slot); }

    std::vector<Node> nodes;           ///< The root first; none without points.
    std::vector<T> lanes;              ///< NaN in lanes without a finite point.
    std::vector<std::uint32_t> order;  ///< Index of each slot's point in the caller's vector.
    SlotSet finite_lanes;              ///< The points that are finite.
    std::size_t points = 0;
    std::size_t depth = 0;  ///< Nodes on the longest path from root to leaf.

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
