// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "simulation/scene_object.hpp"

namespace kelvora::simulation {

/// Objects in front of a uniform background, at a point in time.
///
/// Later objects in the list hide earlier ones. Object i has the id i + 1.
class Scene {
public:
    /// \throws std::invalid_argument if a side of the sensor is below 1 or above 65535
    Scene(int width_, int height_, std::vector<SceneObject> objects_);

    int width() const { return sensor_width; }
    int height() const { return sensor_height; }
    std::uint64_t timeUs() const { return time_us; }
    const std::vector<SceneObject>& objects() const& { return members; }
    /// Returns a copy, so that a loop over the objects of a temporary scene is safe.
    std::vector<SceneObject> objects() && { return std::move(members); }

    /// Moves all objects. Straight paths are exact; reflections and rotations need steps of a few
    /// milliseconds.
    void advance(std::uint64_t duration_us);

    /// The longest step, in microseconds, in which no outline moves more than half a pixel and no
    /// light changes by more than a third.
    double longestStepUs() const;

    /// The pixels of the sensor that an object covers at least partly; may be empty.
    Region regionOnSensor(const SceneObject& object) const;

private:
    int sensor_width;
    int sensor_height;
    std::uint64_t time_us = 0;
    std::vector<SceneObject> members;
};

}  // namespace kelvora::simulation
