// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "simulation/event_simulator.hpp"

namespace kelvora::simulation {

/// All events and all ground truth of a simulation.
struct SimulatedRecording {
    std::vector<Event2D> events;
    std::vector<GroundTruth> truth;
};

SimulatedRecording record(EventSimulator simulator);

/// A small sensor and a tenth of a second, without noise and with identical pixels.
SceneOptions quietOptions();

/// A disc of radius 10 that moves to the right through the middle of the sensor of `quietOptions`.
SceneObject discMovingRight(double contrast);

/// FNV-1a over the fields of all events, low bytes first.
std::uint64_t hashOf(const std::vector<Event2D>& events);

}  // namespace kelvora::simulation
