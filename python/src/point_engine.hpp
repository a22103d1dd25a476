// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "clusterer.hpp"
#include "kelvora/cluster_geometry.hpp"
#include "kelvora/kd_point.hpp"
#include "kelvora/recording/sensor_size.hpp"

/// \file
/// Shared parts of the methods that cluster points.

namespace kelvora::python {

/// How events become points, and the maximum number of points.
struct PointParameters {
    recording::SensorSize sensor;
    int dim;
    bool is_double;
    float scale_x;  ///< Scaled units per pixel column.
    float scale_y;
    float scale_time;  ///< Scaled units per microsecond.
    unsigned long long capacity;
    unsigned long long time_length;
};

/// Points in pixels and microseconds, with `dim` numbers each.
struct PointTable {
    std::size_t dim;
    std::vector<double> coordinates;
};

/// A generator that clusters points, of any dimension and precision.
class PointEngine : public Engine {
public:
    /// The points of each cluster, in the order of the clusters. Coordinates are whole pixels and
    /// microseconds.
    ///
    /// \param origin  Added to all times, microseconds.
    virtual std::vector<PointTable> points(std::uint64_t origin) = 0;

    /// The centroids of the clusters; empty if the method has no centroids.
    virtual PointTable centroids(std::uint64_t origin) = 0;

    /// The number of points of each cluster.
    virtual std::vector<unsigned long long> sizes() = 0;
};

/// Converts the points of a generator back to pixels and microseconds.
template <int DIM, typename T>
void appendPoint(const KDPoint<DIM, T>& point, const PointParameters& parameters,
                 std::uint64_t origin, bool is_event, PointTable& table) {
    const float scales[] = {parameters.scale_x, parameters.scale_y, parameters.scale_time};
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const double value = static_cast<double>(point.coordinates[axis]) / scales[axis];
        const double offset = axis == 2 ? static_cast<double>(origin) : 0.0;
        table.coordinates.push_back((is_event ? std::round(value) : value) + offset);
    }
}

/// Sets the times of clusters from their points. The generators truncate, so a float just below a
/// whole microsecond would be a microsecond off.
template <int DIM, typename T>
void setTimes(const std::vector<std::vector<KDPoint<DIM, T>>>& points, float scale_time,
              std::vector<ClusterGeometry>& clusters) {
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        clusters[i].start_time = -1;
        clusters[i].duration = 0;
        if (!points[i].empty()) {
            const auto [first, last] = std::minmax_element(
                points[i].begin(), points[i].end(), [](const auto& a, const auto& b) {
                    return a.coordinates[DIM - 1] < b.coordinates[DIM - 1];
                });
            const auto microseconds = [&](const KDPoint<DIM, T>& point) {
                const double time = static_cast<double>(point.coordinates[DIM - 1]) / scale_time;
                return static_cast<int>(std::round(time));
            };
            clusters[i].start_time = microseconds(*first);
            clusters[i].duration = microseconds(*last) - clusters[i].start_time;
        }
    }
}

/// Calls `make` with a point of the given dimension and precision. Only the type of the point
/// matters.
template <class Make>
std::unique_ptr<Engine> makePointEngine(const PointParameters& parameters, const Make& make) {
    if (parameters.dim == 2 && !parameters.is_double) {
        return make(KDPoint<2, float>());
    }
    if (parameters.dim == 2) {
        return make(KDPoint<2, double>());
    }
    if (!parameters.is_double) {
        return make(KDPoint<3, float>());
    }
    return make(KDPoint<3, double>());
}

}  // namespace kelvora::python
