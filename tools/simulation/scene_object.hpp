// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "simulation/shape.hpp"

namespace kelvora::simulation {

/// Kind of an object in a scene.
enum class ObjectKind : std::uint8_t {
    kDisc,
    kBar,
    kPolygon,
    kLight,  ///< A flickering lamp that does not move.
};

/// "disc", "bar", "polygon" or "light".
std::string nameOf(ObjectKind kind);

/// A shape of uniform brightness on a straight path.
struct SceneObject {
    ObjectKind kind;
    Shape shape;
    double contrast;       ///< Log brightness relative to the background; negative: darker.
    Pose pose;             ///< Current position and orientation.
    Point velocity;        ///< Of its centre, in pixels per second.
    double turn_rate = 0;  ///< In radians per second, clockwise.
    std::uint64_t flicker_period_us =
        0;  ///< 0: steady. Otherwise it goes off and on once per period.

    /// Moves the object. It is reflected at the borders of the sensor once half of its radius is
    /// outside.
    void advance(double seconds, int sensor_width, int sensor_height);

    /// Current log brightness relative to the background.
    float brightness(std::uint64_t time_us) const;

    /// Speed, in pixels per second, of the fastest point of its outline.
    double fastestEdge() const;
};

}  // namespace kelvora::simulation
