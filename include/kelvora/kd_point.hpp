// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <type_traits>

#include "kelvora/export.hpp"

namespace kelvora {

/// A point in two or three dimensions: x, y and, in three dimensions, time.
///
/// \code{.cpp}
/// kelvora::KDPoint<2, float> sum;
/// for (const float x : {1.0F, 2.0F, 6.0F}) {
///     kelvora::KDPoint<2, float> point;
///     point.coordinates = {x, 0.0F};
///     sum += point;
/// }
/// const auto mean = sum / 3.0F;
/// std::cout << "mean " << mean.getPoint(0) << ", " << mean.getPoint(1) << '\n';  // 3, 0
/// \endcode
///
/// A plain value: any number of threads may read one at the same time. All operations take constant
/// time.
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

    /// Constructs the origin.
    KDPoint() : KDPoint(T{0}) {}

    /// Sets all coordinates to the same number.
    /// \param value  The number, in scaled units.
    KDPoint(const T& value) { coordinates.fill(value); }

    /// Returns one coordinate.
    /// \param index  0 for x, 1 for y, 2 for time.
    /// \returns the coordinate, or 0 if there is no such index.
    T getPoint(int index) const {
        return static_cast<unsigned>(index) < DIM ? coordinates[static_cast<unsigned>(index)]
                                                  : T{0};
    }

    /// Adds another point, coordinate by coordinate.
    /// \param other  The point to add.
    /// \returns this point.
    KDPoint& operator+=(const KDPoint& other);

    /// Divides every coordinate.
    /// \param divisor  Not checked: 0 gives infinities or NaN.
    /// \returns the quotient; this point does not change.
    KDPoint operator/(T divisor);

    /// Returns the Euclidean distance to another point. Differences and squares are computed in `T`
    /// and summed in `double`: a `float` square that overflows makes the distance infinite.
    /// \param other  The point to measure to.
    /// \returns the distance, in scaled units.
    double euclideanDistance(const KDPoint& other) const;
};

extern template struct KELVORA_EXPORT KDPoint<2, float>;
extern template struct KELVORA_EXPORT KDPoint<2, double>;
extern template struct KELVORA_EXPORT KDPoint<3, float>;
extern template struct KELVORA_EXPORT KDPoint<3, double>;

}  // namespace kelvora
