// SPDX-License-Identifier: MIT
#include "kelvora/kd_point.hpp"

#include <cmath>

namespace kelvora {

template <int DIM, typename T>
KDPoint<DIM, T>& KDPoint<DIM, T>::operator+=(const KDPoint& other) {
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        coordinates[axis] += other.coordinates[axis];
    }
    return *this;
}

template <int DIM, typename T>
// Not const: part of the interface.
// NOLINTNEXTLINE(readability-make-member-function-const)
KDPoint<DIM, T> KDPoint<DIM, T>::operator/(T divisor) {
    KDPoint quotient;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        quotient.coordinates[axis] = coordinates[axis] / divisor;
    }
    return quotient;
}

template <int DIM, typename T>
double KDPoint<DIM, T>::euclideanDistance(const KDPoint& other) const {
    double sum = 0.0;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const T difference = coordinates[axis] - other.coordinates[axis];
        const T square = difference * difference;
        sum += static_cast<double>(square);
    }
    return std::sqrt(sum);
}

template struct KDPoint<2, float>;
template struct KDPoint<2, double>;
template struct KDPoint<3, float>;
template struct KDPoint<3, double>;

}  // namespace kelvora
