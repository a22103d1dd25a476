// SPDX-License-Identifier: MIT
#include "simulation/scene.hpp"

#include <algorithm>
#include <stdexcept>

namespace kelvora::simulation {

namespace {

constexpr double kLongestStepUs = 2000;
constexpr double kStepsPerFlicker = 16;
constexpr double kMicrosecondsToMoveHalfAPixelAtSpeed1 = 500'000;

}  // namespace

Scene::Scene(int width_, int height_, std::vector<SceneObject> objects_)
    : sensor_width(width_), sensor_height(height_), members(std::move(objects_)) {
    if (width_ < 1 || width_ > 65535 || height_ < 1 || height_ > 65535) {
        throw std::invalid_argument("each side of the sensor must be from 1 to 65535 pixels");
    }
}

void Scene::advance(std::uint64_t duration_us) {
    const double seconds = static_cast<double>(duration_us) / 1e6;
    for (SceneObject& object : members) {
        object.advance(seconds, sensor_width, sensor_height);
    }
    time_us += duration_us;
}

double Scene::longestStepUs() const {
    double step = kLongestStepUs;
    for (const SceneObject& object : members) {
        const double speed = object.fastestEdge();
        if (speed > 0) {
            step = std::min(step, kMicrosecondsToMoveHalfAPixelAtSpeed1 / speed);
        }
        if (object.flicker_period_us > 0) {
            step = std::min(step, static_cast<double>(object.flicker_period_us) / kStepsPerFlicker);
        }
    }
    return step;
}

Region Scene::regionOnSensor(const SceneObject& object) const {
    return intersect(object.shape.region(object.pose), {0, 0, sensor_width, sensor_height});
}

}  // namespace kelvora::simulation
