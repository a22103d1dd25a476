// SPDX-License-Identifier: MIT
#pragma once

#include <limits>

#include "kelvora/events.hpp"

namespace kelvora::test {

/// Named constructor arguments of all generators that work on points.
///
/// \tparam Settings  The derived type with the additional arguments of a generator.
template <class Settings>
struct PointGeneratorSettings {
    static constexpr unsigned long long kUnbounded = std::numeric_limits<unsigned long long>::max();

    int sensor_width = 100;
    int sensor_height = 80;
    float scale_width = 1;
    float scale_height = 1;
    float scale_time = 1;
    EventFilterType filter_type = POLARITY_FREE;
    unsigned long long max_capacity = kUnbounded;
    unsigned long long max_time_length = kUnbounded;

    Settings& sensor(int width, int height) {
        sensor_width = width;
        sensor_height = height;
        return self();
    }
    Settings& scales(float width, float height, float time) {
        scale_width = width;
        scale_height = height;
        scale_time = time;
        return self();
    }
    Settings& filter(EventFilterType type) {
        filter_type = type;
        return self();
    }
    Settings& capacity(unsigned long long points) {
        max_capacity = points;
        return self();
    }
    Settings& timeLength(unsigned long long microseconds) {
        max_time_length = microseconds;
        return self();
    }

private:
    Settings& self() { return static_cast<Settings&>(*this); }
};

}  // namespace kelvora::test
