// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/kd_point.hpp"

/// \file
/// Boxes around points: first the minimum on each axis, then the maximum. Callers get the extent
/// instead of the maximum.

namespace kelvora {

/// Widens a box of minima and maxima to include a point.
template <int DIM, typename T>
void widenBox(std::vector<T>& box, const KDPoint<DIM, T>& point) {
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const T value = point.coordinates[axis];
        if (box[axis] > value) {
            box[axis] = value;
        }
        if (value > box[DIM + axis]) {
            box[DIM + axis] = value;
        }
    }
}

/// Turns minima and maxima into minima and extents.
template <int DIM, typename T>
void maximaToExtents(std::vector<T>& box) {
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        box[DIM + axis] -= box[axis];
    }
}

/// Returns minima and extents of some points, at least one.
template <int DIM, typename T>
std::vector<T> boxOf(const std::vector<KDPoint<DIM, T>>& points,
                     const std::vector<std::size_t>& members) {
    const auto& first = points[members[0]].coordinates;
    std::vector<T> box(first.begin(), first.end());
    box.insert(box.end(), first.begin(), first.end());
    for (const std::size_t member : members) {
        widenBox(box, points[member]);
    }
    maximaToExtents<DIM>(box);
    return box;
}

}  // namespace kelvora
