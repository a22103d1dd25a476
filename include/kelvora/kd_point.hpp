// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <type_traits>

#include "kelvora/export.hpp"

namespace kelvora {

/// A point of fixed dimension: x, y and, in three dimensions, time.
///
/// \tparam DIM  2 or 3.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
struct KDPoint {
    static_assert(DIM == 2 || DIM == 3, "points have two or three dimensions");
    static_assert(std::is_same_v<T, float> || std::is_same_v<T, double>,
                  "coordinates are float or double");

    /// x, y and, in three dimensions, time, in scaled units.
    std::array<T, DIM> coordinates;

    /// The origin.
    KDPoint() : KDPoint(T{0}) {}

    /// All coordinates are `value`.
    KDPoint(const T& value) { coordinates.fill(value); }

    /// The coordinate of that number, and 0 for a number that does not exist: never fails.
    T getPoint(int index) const {
        return static_cast<unsigned>(index) < DIM ? coordinates[static_cast<unsigned>(index)]
                                                  : T{0};
    }

    /// Adds coordinate by coordinate.
    KDPoint& operator+=(const KDPoint& other);

    /// A point with each coordinate divided by `divisor`. Not guarded: dividing by 0 gives
    /// infinities or NaN.
    KDPoint operator/(T divisor);

    /// The Euclidean distance. Differences and their squares are formed in `T`, and summed in
    /// `double`: a `float` square that overflows makes the distance infinite.
    double euclideanDistance(const KDPoint& other) const;
};

extern template struct KELVORA_EXPORT KDPoint<2, float>;
extern template struct KELVORA_EXPORT KDPoint<2, double>;
extern template struct KELVORA_EXPORT KDPoint<3, float>;
extern template struct KELVORA_EXPORT KDPoint<3, double>;

}  // namespace kelvora
