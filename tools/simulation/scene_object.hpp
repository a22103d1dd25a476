// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "simulation/shape.hpp"

namespace kelvora::simulation {

/// What an object of a scene is.
enum class ObjectKind : std::uint8_t {
    kDisc,
    kBar,
    kPolygon,
    kLight,  ///< A lamp that flickers and stays in its place.
};

/// "disc", "bar", "polygon" or "light".
std::string nameOf(ObjectKind kind);

/// A shape of uniform brightness on a straight path.
struct SceneObject {
    ObjectKind kind;
    Shape shape;
    double contrast;  ///< Log brightness above that of the background; negative: darker than it.
    Pose pose;        ///< Where it is now.
    Point velocity;   ///< Of its centre, in pixels per second.
    double turn_rate = 0;  ///< In radians per second, clockwise.
    std::uint64_t flicker_period_us =
        0;  ///< 0: steady. Otherwise it goes off and on once per period.

    /// Moves it on. Its centre turns back at the borders of the sensor, though not before half of
    /// its radius has left.
    void advance(double seconds, int sensor_width, int sensor_height);

    /// Log brightness above that of the background.
    float brightness(std::uint64_t time_us) const;

    /// Speed, in pixels per second, of the fastest point of its outline.
    double fastestEdge() const;
};

}  // namespace kelvora::simulation
