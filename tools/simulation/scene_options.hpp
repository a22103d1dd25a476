// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace kelvora::simulation {

/// Options of a simulation. The defaults produce two seconds with eight objects that cross each
/// other, and a light.
struct SceneOptions {
    int width = 640;                        ///< Of the sensor, in pixels: 16 to 4096.
    int height = 480;                       ///< Of the sensor, in pixels: 16 to 4096.
    std::uint64_t duration_us = 2'000'000;  ///< Of the recording: 1 to 10^15.
    std::uint64_t seed = 7;                 ///< Of the random numbers.
    std::optional<int> discs;               ///< 0 to 100; unset: 3, fewer below 120 pixels.
    std::optional<int> bars;                ///< 0 to 100; unset: 2, fewer below 120 pixels.
    std::optional<int> polygons;            ///< 0 to 100; unset: 3, fewer below 120 pixels.
    int lights = 1;                         ///< Flickering lights: 0 to 100.
    double light_frequency_hz = 100;        ///< Periods of a light per second: 1 to 500.
    double noise_rate_hz = 0.1;             ///< Noise events per pixel and second: 0 to 100.
    int hot_pixels = 4;                     ///< 0 to 1000, at most the number of pixels.
    double hot_pixel_rate_hz = 500;         ///< Events per hot pixel and second: 0 to 100000.
    double contrast_threshold =
        0.2;                         ///< Change of log brightness that causes an event: 0.01 to 10.
    double threshold_spread = 0.03;  ///< Standard deviation among pixels, relative: 0 to 0.2.
    std::uint64_t truth_interval_us =
        10'000;  ///< Between two rows of ground truth: 100 to 1000000.

    /// \throws std::invalid_argument with the first value out of range and its range
    void validate() const;
};

}  // namespace kelvora::simulation
