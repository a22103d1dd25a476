// SPDX-License-Identifier: MIT
#include "tools/simulation/simulated_recording.hpp"

namespace kelvora::simulation {

namespace {

void addToHash(std::uint64_t value, int bytes, std::uint64_t& hash) {
    for (int i = 0; i < bytes; ++i) {
        hash = (hash ^ (value & 0xFFU)) * 0x100000001B3U;
        value >>= 8U;
    }
}

}  // namespace

SimulatedRecording record(EventSimulator simulator) {
    SimulatedRecording recording;
    while (simulator.step(recording.events, recording.truth)) {
    }
    return recording;
}

SceneOptions quietOptions() {
    SceneOptions options;
    options.width = 160;
    options.height = 120;
    options.duration_us = 100'000;
    options.noise_rate_hz = 0;
    options.hot_pixels = 0;
    options.threshold_spread = 0;
    return options;
}

SceneObject discMovingRight(double contrast) {
    return {ObjectKind::kDisc, Shape::disc(10), contrast, {{40, 60}, {1, 0}}, {300, 0}};
}

std::uint64_t hashOf(const std::vector<Event2D>& events) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const Event2D& event : events) {
        addToHash(event.x, 2, hash);
        addToHash(event.y, 2, hash);
        addToHash(event.polarity, 1, hash);
        addToHash(event.timestamp, 8, hash);
    }
    return hash;
}

}  // namespace kelvora::simulation
