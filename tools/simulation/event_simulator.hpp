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

/// What an event camera would record of a scene, with the true places of the objects in it.
///
/// The same options give the same events with every compiler and on every machine. Memory depends
/// on the size of the sensor, not on the duration.
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
    /// The random scene of the options.
    /// \throws std::invalid_argument as `SceneOptions::validate`
    explicit EventSimulator(const SceneOptions& options_);

    /// A scene of one's own; the options say the rest, but their counts of objects go unused.
    /// \throws std::invalid_argument as `SceneOptions::validate`, or if the sensors differ in size
    EventSimulator(const SceneOptions& options_, Scene scene_);

    /// Simulates the next interval of `truth_interval_us`, or what is left of the duration.
    ///
    /// \param events the events of the interval are appended, ordered by time; no earlier than
    ///     those of the intervals before
    /// \param truth the rows of the interval are appended, ordered by id. A last interval that the
    ///     duration cuts short has none
    /// \returns false, and appends nothing, if the duration is over
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
