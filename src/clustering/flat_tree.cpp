// SPDX-License-Identifier: MIT
#include "clustering/flat_tree.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "clustering/lane_bits.hpp"

namespace kelvora {

template <int DIM, typename T>
void FlatTree<DIM, T>::build(const std::vector<Point>& points_) {
    nodes.clear();
    lanes.clear();
    order.clear();
    finite_lanes.clear();
    points = points_.size();
    depth = 0;
    if (points > 0) {
        std::vector<Entry> entries = entriesOf(points_);
        const Range all = {entries.data(), entries.data() + entries.size()};
        Bounds bounds = boundsOf(all);
        depth = addNode(all, bounds);
    }
}

template <int DIM, typename T>
void FlatTree<DIM, T>::listSlots(std::vector<std::uint32_t>& slot_of) const {
    slot_of.assign(points, kNoSlot);
    for (std::size_t leaf = 0; leaf < leaves(); ++leaf) {
        forEachLane(finite_lanes[leaf], [&](unsigned lane) {
            const std::uint32_t slot = slotAt(leaf, lane);
            slot_of[order[slot]] = slot;
        });
    }
}

template <int DIM, typename T>
std::vector<typename FlatTree<DIM, T>::Entry> FlatTree<DIM, T>::entriesOf(
    const std::vector<Point>& points) {
    std::vector<Entry> entries(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        entries[i].number = static_cast<std::uint32_t>(i);
        entries[i].is_finite = true;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const T value = points[i].coordinates[axis];
            const bool is_finite = std::isfinite(value);
            entries[i].coordinates[axis] = is_finite ? value : std::numeric_limits<T>::max();
            entries[i].is_finite = entries[i].is_finite && is_finite;
        }
    }
    return entries;
}

template <int DIM, typename T>
typename FlatTree<DIM, T>::Bounds FlatTree<DIM, T>::boundsOf(Range range) {
    Bounds bounds = {range.begin->coordinates, range.begin->coordinates};
    for (const Entry* entry = range.begin; entry != range.end; ++entry) {
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            bounds.low[axis] = std::min(bounds.low[axis], entry->coordinates[axis]);
            bounds.high[axis] = std::max(bounds.high[axis], entry->coordinates[axis]);
        }
    }
    return bounds;
}

/// Adds a node and its subtree. Returns the depth of the subtree, and sets `bounds` to the exact
/// bounds of its points.
template <int DIM, typename T>
std::size_t FlatTree<DIM, T>::addNode(Range range, Bounds& bounds) {
    const std::size_t place = nodes.size();
    nodes.emplace_back();
    if (static_cast<std::size_t>(range.end - range.begin) <= kLeafMaxSize) {
        bounds = boundsOf(range);
        nodes[place].axis = kLeaf;
        nodes[place].other = static_cast<std::uint32_t>(addLeaf(range));
        return 1;
    }
    const Cut cut = chooseCut(range, bounds);
    Entry* const middle = divide(range, cut);
    Bounds first = bounds;
    first.high[cut.axis] = cut.value;
    Bounds second = bounds;
    second.low[cut.axis] = cut.value;
    const std::size_t first_depth = addNode({range.begin, middle}, first);
    const std::size_t other = nodes.size();
    const std::size_t second_depth = addNode({middle, range.end}, second);
    nodes[place] = {first.high[cut.axis], second.low[cut.axis], static_cast<std::uint32_t>(other),
                    static_cast<std::uint8_t>(cut.axis)};
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        bounds.low[axis] = std::min(first.low[axis], second.low[axis]);
        bounds.high[axis] = std::max(first.high[axis], second.high[axis]);
    }
    return 1 + std::max(first_depth, second_depth);
}

/// Cuts the longest side of the bounds in the middle, or at the nearest point if all points lie on
/// one side. If several sides are about equally long, cuts the one with the
/// largest spread of points.
template <int DIM, typename T>
typename FlatTree<DIM, T>::Cut FlatTree<DIM, T>::chooseCut(Range range, const Bounds& bounds) {
    constexpr T kAsLong = 1 - static_cast<T>(0.00001);
    T longest = bounds.high[0] - bounds.low[0];
    for (std::size_t axis = 1; axis < DIM; ++axis) {
        longest = std::max(longest, bounds.high[axis] - bounds.low[axis]);
    }
    Cut cut = {0, T{0}};
    T low = 0;
    T high = 0;
    T largest_spread = -1;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        if (!(bounds.high[axis] - bounds.low[axis] >= kAsLong * longest)) {
            continue;
        }
        T axis_low = range.begin->coordinates[axis];
        T axis_high = axis_low;
        for (const Entry* entry = range.begin; entry != range.end; ++entry) {
            axis_low = std::min(axis_low, entry->coordinates[axis]);
            axis_high = std::max(axis_high, entry->coordinates[axis]);
        }
        if (axis_high - axis_low > largest_spread) {
            largest_spread = axis_high - axis_low;
            cut.axis = axis;
            low = axis_low;
            high = axis_high;
        }
    }
    const T middle = (bounds.low[cut.axis] + bounds.high[cut.axis]) / 2;
    cut.value = middle < low ? low : middle > high ? high : middle;
    return cut;
}

/// Sorts entries into below, on and above the cut, in this order, by swapping the outermost two
/// that are on the wrong side. Returns the end of the first child: as close to half of the entries
/// as possible, where entries on the cut may go to either child.
template <int DIM, typename T>
typename FlatTree<DIM, T>::Entry* FlatTree<DIM, T>::divide(Range range, const Cut& cut) {
    const auto partition = [&](Entry* begin, auto belongsInFront) {
        Entry* end = range.end;
        while (true) {
            while (begin != end && belongsInFront(begin->coordinates[cut.axis])) {
                ++begin;
            }
            while (begin != end && !belongsInFront((end - 1)->coordinates[cut.axis])) {
                --end;
            }
            if (begin == end) {
                return begin;
            }
            std::swap(*begin++, *--end);
        }
    };
    Entry* const on_cut = partition(range.begin, [&](T value) { return value < cut.value; });
    Entry* const above_cut = partition(on_cut, [&](T value) { return value <= cut.value; });
    Entry* const half = range.begin + (range.end - range.begin) / 2;
    return std::max(on_cut, std::min(above_cut, half));
}

template <int DIM, typename T>
std::size_t FlatTree<DIM, T>::addLeaf(Range range) {
    const std::size_t leaf = finite_lanes.size();
    finite_lanes.push_back(0);
    order.resize(order.size() + (std::size_t{1} << kLaneBits));
    lanes.resize(lanes.size() + DIM * kLanes, std::numeric_limits<T>::quiet_NaN());
    const auto count = static_cast<unsigned>(range.end - range.begin);
    for (unsigned lane = 0; lane < count; ++lane) {
        const Entry& entry = range.begin[lane];
        order[slotAt(leaf, lane)] = entry.number;
        if (entry.is_finite) {
            finite_lanes[leaf] = static_cast<std::uint16_t>(finite_lanes[leaf] | 1U << lane);
            for (std::size_t axis = 0; axis < DIM; ++axis) {
                lanes[(leaf * DIM + axis) * kLanes + lane] = entry.coordinates[axis];
            }
        }
    }
    return leaf;
}

template class FlatTree<2, float>;
template class FlatTree<2, double>;
template class FlatTree<3, float>;
template class FlatTree<3, double>;

}  // namespace kelvora
