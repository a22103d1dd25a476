// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace kelvora {

/// The squared distance, computed exactly like in nanoflann: results depend on every rounding.
template <int DIM, typename T>
T squaredDistance(const std::array<T, DIM>& a, const std::array<T, DIM>& b) {
    T sum = 0;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const T difference = a[axis] - b[axis];
        sum += difference * difference;
    }
    return sum;
}

}  // namespace kelvora
