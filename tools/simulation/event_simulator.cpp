// SPDX-License-Identifier: MIT
#include "simulation/event_simulator.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "simulation/random_scene.hpp"

namespace kelvora::simulation {

namespace {

// Streams of random numbers. The scene uses stream 1.
constexpr std::uint64_t kPixelStream = 2;
constexpr std::uint64_t kBackgroundNoiseStream = 3;
constexpr std::uint64_t kHotPixelStream = 4;

const SceneOptions& validated(const SceneOptions& options, const Scene& scene) {
    options.validate();
    if (scene.width() != options.width || scene.height() != options.height) {
        throw std::invalid_argument("the scene and the options differ in the size of the sensor");
    }
    return options;
}

Canvas painted(const Scene& scene) {
    Canvas canvas(scene.width(), scene.height());
    canvas.paint(scene);
    return canvas;
}

std::vector<Region> regionsOnSensor(const Scene& scene) {
    std::vector<Region> regions;
    for (const SceneObject& object : scene.objects()) {
        regions.push_back(scene.regionOnSensor(object));
    }
    return regions;
}

Region uniteNonEmpty(const Region& a, const Region& b) {
    if (isEmpty(a)) {
        return b;
    }
    return isEmpty(b) ? a : unite(a, b);
}

}  // namespace

EventSimulator::EventSimulator(const SceneOptions& options_)
    : EventSimulator(options_, randomScene(options_)) {}

EventSimulator::EventSimulator(const SceneOptions& options_, Scene scene_)
    : options(validated(options_, scene_)),
      scene(std::move(scene_)),
      longest_step_us(scene.longestStepUs()),
      canvas(painted(scene)),
      pixels(canvas, options.width, options.height, options.contrast_threshold,
             options.threshold_spread, {options.seed, kPixelStream}),
      background_noise(Noise::background(options.width, options.height, options.noise_rate_hz,
                                         {options.seed, kBackgroundNoiseStream})),
      hot_pixel_noise(Noise::hotPixels(options.hot_pixels, options.width, options.height,
                                       options.hot_pixel_rate_hz,
                                       {options.seed, kHotPixelStream})) {}

bool EventSimulator::step(std::vector<Event2D>& events, std::vector<GroundTruth>& truth) {
    const std::uint64_t begin_us = scene.timeUs();
    if (begin_us >= options.duration_us) {
        return false;
    }
    const std::uint64_t interval_us =
        std::min(options.truth_interval_us, options.duration_us - begin_us);
    const auto steps =
        static_cast<std::uint64_t>(static_cast<double>(interval_us) / longest_step_us) + 1;
    recorder.begin(scene);
    for (std::uint64_t i = 1; i <= steps; ++i) {
        simulateUntil(begin_us + interval_us * i / steps, events);
        recorder.follow(scene);
        if (i == (steps + 1) / 2) {
            recorder.measureVisibility(scene);
        }
    }
    if (interval_us == options.truth_interval_us) {
        recorder.finish(scene, truth);
    }
    return true;
}

void EventSimulator::simulateUntil(std::uint64_t end_us, std::vector<Event2D>& events) {
    const std::uint64_t begin_us = scene.timeUs();
    if (begin_us == end_us) {
        return;
    }
    const auto first_event = static_cast<std::ptrdiff_t>(events.size());
    const std::vector<Region> before = regionsOnSensor(scene);
    scene.advance(end_us - begin_us);
    const std::vector<Region> after = regionsOnSensor(scene);
    for (const Region& region : before) {
        canvas.clear(region);
    }
    canvas.paint(scene);
    for (std::size_t i = 0; i < before.size(); ++i) {
        pixels.expose(canvas, uniteNonEmpty(before[i], after[i]), begin_us, end_us, events);
    }
    background_noise.advance(end_us, events);
    hot_pixel_noise.advance(end_us, events);
    // Stable, so that events of the same microsecond keep the order in which they were made.
    std::stable_sort(events.begin() + first_event, events.end(),
                     [](const Event2D& a, const Event2D& b) { return a.timestamp < b.timestamp; });
}

}  // namespace kelvora::simulation
