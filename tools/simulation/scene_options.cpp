// SPDX-License-Identifier: MIT
#include "simulation/scene_options.hpp"

#include <fmt/format.h>

#include <stdexcept>

namespace kelvora::simulation {

namespace {

// This form rejects NaN, too.
template <typename T>
void requireRange(const char* name, T value, T low, T high) {
    if (!(value >= low && value <= high)) {
        throw std::invalid_argument(
            fmt::format("{} is {}, but must be from {} to {}", name, value, low, high));
    }
}

void requireObjects(const char* name, const std::optional<int>& count) {
    requireRange(name, count.value_or(0), 0, 100);
}

}  // namespace

void SceneOptions::validate() const {
    requireRange("width", width, 16, 4096);
    requireRange("height", height, 16, 4096);
    requireRange<std::uint64_t>("duration_us", duration_us, 1, 1'000'000'000'000'000);
    requireObjects("discs", discs);
    requireObjects("bars", bars);
    requireObjects("polygons", polygons);
    requireObjects("lights", lights);
    requireRange("light_frequency_hz", light_frequency_hz, 1.0, 500.0);
    requireRange("noise_rate_hz", noise_rate_hz, 0.0, 100.0);
    requireRange("hot_pixels", hot_pixels, 0, width * height < 1000 ? width * height : 1000);
    requireRange("hot_pixel_rate_hz", hot_pixel_rate_hz, 0.0, 100'000.0);
    requireRange("contrast_threshold", contrast_threshold, 0.01, 10.0);
    requireRange("threshold_spread", threshold_spread, 0.0, 0.2);
    requireRange<std::uint64_t>("truth_interval_us", truth_interval_us, 100, 1'000'000);
}

}  // namespace kelvora::simulation
