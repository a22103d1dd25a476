// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "simulation/ground_truth.hpp"
#include "simulation/scene.hpp"

namespace kelvora::simulation {

/// Records the ground truth of a scene's objects during an interval.
class TruthRecorder {
public:
    /// Starts a new interval and discards the last one.
    void begin(const Scene& scene);

    /// Extends the boxes to the current positions of the objects.
    void follow(const Scene& scene);

    /// Measures how much of each object is currently visible.
    void measureVisibility(const Scene& scene);

    /// Appends a row for each object whose box overlaps the sensor. The interval ends at the
    /// scene's time.
    void finish(const Scene& scene, std::vector<GroundTruth>& truth) const;

private:
    std::vector<Box> boxes;  ///< One per object.
    std::vector<double> visibilities;
};

/// The visible share of each object of a scene: neither hidden by other objects nor off the sensor.
std::vector<double> visibilitiesOf(const Scene& scene);

}  // namespace kelvora::simulation
