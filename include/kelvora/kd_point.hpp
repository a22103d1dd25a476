// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <type_traits>

#include "kelvora/export.hpp"

namespace kelvora {

/// A point of fixed dimension: x, y and, in three dimensions, time. A plain value: any number of
/// threads may read one, and all operations take constant time.
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

    /// Sets all coordinates to the same number.
    /// \param value  That number, in scaled units.
    KDPoint(const T& value) { coordinates.fill(value); }

    /// Reads one coordinate; never fails.
    /// \param index  0 for x, 1 for y, 2 for time.
    /// \returns the coordinate, and 0 for an index that does not exist.
    T getPoint(int index) const {
        return static_cast<unsigned>(index) < DIM ? coordinates[static_cast<unsigned>(index)]
                                                  : T{0};
    }

    /// Adds coordinate by coordinate.
    /// \param other  What to add.
    /// \returns this point.
    KDPoint& operator+=(const KDPoint& other);

    /// Divides coordinate by coordinate.
    /// \param divisor  Not guarded: 0 gives infinities or NaN.
    /// \returns the quotient; this point stays as it is.
    KDPoint operator/(T divisor);

    /// Measures the Euclidean distance. Differences and their squares are formed in `T`, and summed
    /// in `double`: a `float` square that overflows makes the distance infinite.
    /// \param other  The point to measure to.
    /// \returns the distance, in scaled units.
    double euclideanDistance(const KDPoint& other) const;
};

extern template struct KELVORA_EXPORT KDPoint<2, float>;
extern template struct KELVORA_EXPORT KDPoint<2, double>;
extern template struct KELVORA_EXPORT KDPoint<3, float>;
extern template struct KELVORA_EXPORT KDPoint<3, double>;

}  // namespace kelvora
