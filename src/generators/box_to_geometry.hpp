// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <opencv2/core/types.hpp>
#include <vector>

#include "generators/point_scales.hpp"
#include "kelvora/cluster_geometry.hpp"

namespace kelvora {

/// The integer part of a number, or 0 if it does not fit into an unsigned 64-bit integer: if it is
/// negative, too large or NaN.
template <typename T>
unsigned long long toUnsigned(T value) {
    constexpr auto kTooLarge = static_cast<T>(18446744073709551616.0);
    return T{0} <= value && value < kTooLarge ? static_cast<unsigned long long>(value) : 0;
}

/// Converts a box of scaled minima and extents to a geometry in pixels, clipped to the sensor. In
/// three dimensions, it also has an extent in time.
template <int DIM, typename T>
ClusterGeometry boxToGeometry(const std::vector<T>& box, const PointScales& scales,
                              int sensor_width, int sensor_height, std::size_t timestamp) {
    const auto unscaled = [&](std::size_t axis, std::size_t offset) {
        return box[axis + offset] / static_cast<T>(scales.of(axis));
    };
    const cv::Rect_<float> sensor(0.0F, 0.0F, static_cast<float>(sensor_width),
                                  static_cast<float>(sensor_height));
    const cv::Rect_<float> rect(
        static_cast<float>(unscaled(0, 0)), static_cast<float>(unscaled(1, 0)),
        static_cast<float>(unscaled(0, DIM)), static_cast<float>(unscaled(1, DIM)));
    if constexpr (DIM == 2) {
        return {rect & sensor, timestamp};
    } else {
        return {rect & sensor, toUnsigned(unscaled(2, 0)), toUnsigned(unscaled(2, DIM)), timestamp};
    }
}

/// Replaces `clusters` by the geometry of each box.
template <int DIM, typename T>
void boxesToGeometries(const std::vector<std::vector<T>>& boxes, const PointScales& scales,
                       int sensor_width, int sensor_height, std::size_t timestamp,
                       std::vector<ClusterGeometry>& clusters) {
    clusters.clear();
    for (const std::vector<T>& box : boxes) {
        clusters.push_back(boxToGeometry<DIM>(box, scales, sensor_width, sensor_height, timestamp));
    }
}

}  // namespace kelvora
