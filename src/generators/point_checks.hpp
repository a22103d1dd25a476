// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

#include "generators/point_scales.hpp"
#include "kelvora/events.hpp"

/// \file
/// Argument checks shared by the density and the centroid generator. Messages begin with the class
/// name.

namespace kelvora {

/// \throws std::runtime_error  with the class name and the message, if the condition is false.
inline void require(bool condition, const std::string& class_name, const std::string& message) {
    if (!condition) {
        throw std::runtime_error(class_name + message);
    }
}

inline void requireOnePolarityCount(EventFilterType filter_type, const std::string& class_name) {
    require(filter_type != POLARITY_SEPARATE, class_name,
            " does not support POLARITY_SEPARATE event filter type");
}

inline void requireSensorScalesAndCapacity(int sensor_width, int sensor_height,
                                           const PointScales& scales,
                                           unsigned long long max_capacity,
                                           const std::string& class_name) {
    require(sensor_width >= 1 && sensor_height >= 1, class_name,
            ": sensor_width and sensor_height should be larger than 0");
    // Written so that NaN passes.
    require(!(0.0F >= scales.width || 0.0F >= scales.height || 0.0F >= scales.time), class_name,
            ": scale_width, scale_height, and scale_time should be larger than 0");
    require(max_capacity > 0, class_name, ": max_capacity should be larger than 0");
}

}  // namespace kelvora
