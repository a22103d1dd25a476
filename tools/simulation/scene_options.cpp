// SPDX-License-Identifier: MIT
#include "simulation/scene_options.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace kelvora::simulation {

namespace {

template <typename T>
void require(const char* name, T value, Limits<T> limits) {
    if (!limits.contain(value)) {
        throw std::invalid_argument(fmt::format("{} is {}, but must be from {} to {}", name, value,
                                                limits.smallest, limits.largest));
    }
}

void requireObjects(const char* name, const std::optional<int>& count) {
    require(name, count.value_or(0), SceneOptions::kObjects);
}

}  // namespace

void SceneOptions::validate() const {
    require("width", width, kSides);
    require("height", height, kSides);
    require("duration_us", duration_us, kDurations);
    requireObjects("discs", discs);
    requireObjects("bars", bars);
    requireObjects("polygons", polygons);
    requireObjects("lights", lights);
    require("light_frequency_hz", light_frequency_hz, kLightFrequencies);
    require("noise_rate_hz", noise_rate_hz, kNoiseRates);
    require("hot_pixels", hot_pixels,
            {kHotPixels.smallest, std::min(width * height, kHotPixels.largest)});
    require("hot_pixel_rate_hz", hot_pixel_rate_hz, kHotPixelRates);
    require("contrast_threshold", contrast_threshold, kContrastThresholds);
    require("threshold_spread", threshold_spread, kThresholdSpreads);
    require("truth_interval_us", truth_interval_us, kTruthIntervals);
}

}  // namespace kelvora::simulation
