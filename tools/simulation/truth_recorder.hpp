// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "simulation/ground_truth.hpp"
#include "simulation/scene.hpp"

namespace kelvora::simulation {

/// Follows the objects of a scene through an interval of time.
class TruthRecorder {
public:
    /// Starts an interval: forgets the last one.
    void begin(const Scene& scene);

    /// Extends the boxes by the places where the objects are now.
    void follow(const Scene& scene);

    /// Measures how much of each object can be seen now.
    void measureVisibility(const Scene& scene);

    /// Appends a row for each object whose box meets the sensor; the interval ends at the scene's
    /// time.
    void finish(const Scene& scene, std::vector<GroundTruth>& truth) const;

private:
    std::vector<Box> boxes;  ///< Of each object.
    std::vector<double> visibilities;
};

/// The share of each object of a scene that is neither hidden by objects in front of it nor off the
/// sensor.
std::vector<double> visibilitiesOf(const Scene& scene);

}  // namespace kelvora::simulation
