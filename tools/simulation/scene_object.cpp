// SPDX-License-Identifier: MIT
#include "simulation/scene_object.hpp"

#include <algorithm>

namespace kelvora::simulation {

namespace {

void advanceBetweenBorders(double seconds, double low, double high, double& position,
                           double& velocity) {
    position += velocity * seconds;
    if (position < low && velocity < 0) {
        position = 2 * low - position;
        velocity = -velocity;
    } else if (position > high && velocity > 0) {
        position = 2 * high - position;
        velocity = -velocity;
    }
}

// A trapezoid, like a switched lamp with a slow circuit: it rises and falls for a fifth of the
// period each.
double flicker(std::uint64_t time_us, std::uint64_t period_us) {
    const double phase = static_cast<double>(time_us % period_us) / static_cast<double>(period_us);
    const double distance_from_peak = phase < 0.5 ? 0.5 - phase : phase - 0.5;
    return std::clamp((0.35 - distance_from_peak) * 5, 0.0, 1.0);
}

}  // namespace

std::string nameOf(ObjectKind kind) {
    switch (kind) {
        case ObjectKind::kDisc:
            return "disc";
        case ObjectKind::kBar:
            return "bar";
        case ObjectKind::kPolygon:
            return "polygon";
        case ObjectKind::kLight:
            return "light";
    }
    return "unknown";
}

void SceneObject::advance(double seconds, int sensor_width, int sensor_height) {
    const double width = sensor_width;
    const double height = sensor_height;
    const double margin = std::min({shape.radius() / 2, width / 4, height / 4});
    advanceBetweenBorders(seconds, margin, width - margin, pose.centre.x, velocity.x);
    advanceBetweenBorders(seconds, margin, height - margin, pose.centre.y, velocity.y);
    if (turn_rate != 0) {
        // For the small steps of a simulation, the tangent of half the angle is about half the
        // angle.
        const Point angle = angleFromHalfTangent(turn_rate * seconds / 2);
        pose.direction = normalised(turned(pose.direction, angle));
    }
}

float SceneObject::brightness(std::uint64_t time_us) const {
    if (flicker_period_us == 0) {
        return static_cast<float>(contrast);
    }
    return static_cast<float>(contrast * flicker(time_us, flicker_period_us));
}

double SceneObject::fastestEdge() const {
    const double turning = turn_rate < 0 ? -turn_rate : turn_rate;
    return length(velocity) + turning * shape.radius();
}

}  // namespace kelvora::simulation
