// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "clustering/concurrent_sets.hpp"
#include "clustering/parallel_search.hpp"
#include "kelvora/kd_point.hpp"

/// \file
/// Reports the points of each set and the box around them, in one pass over the points for any
/// number of sets.

namespace kelvora {

/// The box of a set while points are added: minima, then maxima.
template <int DIM, typename T>
class SetBox {
public:
    SetBox() { values.fill(std::numeric_limits<T>::max()); }

    /// The first point sets the maxima to 0, not to its own coordinates: this is part of the
    /// interface, see `DensityClustering`.
    void add(const KDPoint<DIM, T>& point) {
        const bool is_first = values[0] == std::numeric_limits<T>::max();
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const T value = point.coordinates[axis];
            T& low = values[axis];
            T& high = values[DIM + axis];
            low = is_first || low > value ? value : low;
            high = is_first ? T{0} : value > high ? value : high;
        }
    }

    /// Returns minima and extents.
    std::vector<T> report() const {
        std::vector<T> box(values.begin(), values.end());
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            box[DIM + axis] -= box[axis];
        }
        return box;
    }

private:
    std::array<T, std::size_t{2} * DIM> values;
};

/// Writes the set of each point. Only core points and their neighbours were joined, so points alone
/// in their set are noise.
///
/// \param order  The point that each number in `sets` represents.
inline void writeJoinedSets(ConcurrentSets& sets, const std::vector<std::uint32_t>& order,
                            std::vector<std::uint32_t>& set_of) {
    std::fill(set_of.begin(), set_of.end(), kNoSet);
    for (std::uint32_t i = 0; i < order.size(); ++i) {
        const std::uint32_t first = sets.find(i);
        if (first != i) {
            set_of[order[i]] = order[first];
            set_of[order[first]] = order[first];
        }
    }
}

/// Renumbers the sets in the order of their first points. Returns their sizes.
inline std::vector<std::size_t> renumberSets(std::vector<std::uint32_t>& set_of) {
    std::vector<std::uint32_t> number_of(set_of.size(), kNoSet);
    std::vector<std::size_t> sizes;
    for (std::uint32_t& set : set_of) {
        if (set == kNoSet) {
            continue;
        }
        std::uint32_t& number = number_of[set];
        if (number == kNoSet) {
            number = static_cast<std::uint32_t>(sizes.size());
            sizes.push_back(0);
        }
        set = number;
        ++sizes[number];
    }
    return sizes;
}

/// Reports the sets in the order of their first points. Overwrites `set_of`.
template <int DIM, typename T>
void reportSets(const std::vector<KDPoint<DIM, T>>& points, std::vector<std::uint32_t>& set_of,
                std::vector<std::vector<std::size_t>>& clusters,
                std::vector<std::vector<T>>& boxes) {
    const std::vector<std::size_t> sizes = renumberSets(set_of);
    std::vector<SetBox<DIM, T>> set_boxes(sizes.size());
    clusters.resize(sizes.size());
    for (std::size_t set = 0; set < sizes.size(); ++set) {
        clusters[set].reserve(sizes[set]);
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (set_of[i] != kNoSet) {
            clusters[set_of[i]].push_back(i);
            set_boxes[set_of[i]].add(points[i]);
        }
    }
    boxes.reserve(sizes.size());
    for (const SetBox<DIM, T>& box : set_boxes) {
        boxes.push_back(box.report());
    }
}

}  // namespace kelvora
