// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "simulation/canvas.hpp"
#include "simulation/ground_truth.hpp"
#include "simulation/noise.hpp"
#include "simulation/pixel_array.hpp"
#include "simulation/scene.hpp"
#include "simulation/scene_options.hpp"
#include "simulation/truth_recorder.hpp"

namespace kelvora::simulation {

/// Simulates an event camera that looks at a scene, with the true positions of the objects.
///
/// The same options produce the same events with every compiler and on every machine. Memory
/// depends on the size of the sensor, not on the duration.
///
/// \code
/// EventSimulator simulator(options);
/// std::vector<Event2D> events;
/// std::vector<GroundTruth> truth;
/// while (simulator.step(events, truth)) {
///     write(events, truth);
///     events.clear();
///     truth.clear();
/// }
/// \endcode
class EventSimulator {
public:
    /// Simulates the random scene given by the options.
    /// \throws std::invalid_argument as `SceneOptions::validate`
    explicit EventSimulator(const SceneOptions& options_);

    /// Simulates a custom scene. The options give the rest; their numbers of objects are not used.
    /// \throws std::invalid_argument as `SceneOptions::validate`, or if the sensors differ in size
    EventSimulator(const SceneOptions& options_, Scene scene_);

    /// Simulates the next `truth_interval_us`, or the rest of the duration.
    ///
    /// \param events the events of the interval are appended in time order, also across calls
    /// \param truth the rows of the interval are appended, ordered by id. An incomplete last
    ///     interval has no rows
    /// \returns false, and appends nothing, once the duration is over
    bool step(std::vector<Event2D>& events, std::vector<GroundTruth>& truth);

private:
    void simulateUntil(std::uint64_t end_us, std::vector<Event2D>& events);

    SceneOptions options;
    Scene scene;
    double longest_step_us;
    Canvas canvas;
    PixelArray pixels;
    Noise background_noise;
    Noise hot_pixel_noise;
    TruthRecorder recorder;
};

}  // namespace kelvora::simulation
