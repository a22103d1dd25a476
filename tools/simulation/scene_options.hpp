// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace kelvora::simulation {

/// The smallest and the largest accepted value.
template <typename T>
struct Limits {
    T smallest;
    T largest;

    /// Refuses NaN, too.
    constexpr bool contain(T value) const { return value >= smallest && value <= largest; }
};

/// Options of a simulation. The defaults produce two seconds with eight objects that cross each
/// other, and a light.
struct SceneOptions {
    static constexpr Limits<int> kSides{16, 4096};
    static constexpr Limits<std::uint64_t> kDurations{1, 1'000'000'000'000'000};
    static constexpr Limits<int> kObjects{0, 100};  ///< Of each kind.
    static constexpr Limits<double> kLightFrequencies{1, 500};
    static constexpr Limits<double> kNoiseRates{0, 100};
    static constexpr Limits<int> kHotPixels{0, 1000};  ///< And at most the number of pixels.
    static constexpr Limits<double> kHotPixelRates{0, 100'000};
    static constexpr Limits<double> kContrastThresholds{0.01, 10};
    static constexpr Limits<double> kThresholdSpreads{0, 0.2};
    static constexpr Limits<std::uint64_t> kTruthIntervals{100, 1'000'000};

    // On a sensor of at least 120 pixels; smaller ones have room for fewer.
    static constexpr int kUsualDiscs = 3;
    static constexpr int kUsualBars = 2;
    static constexpr int kUsualPolygons = 3;

    int width = 640;                           ///< Of the sensor, pixels.
    int height = 480;                          ///< Of the sensor, pixels.
    std::uint64_t duration_us = 2'000'000;     ///< Of the recording.
    std::uint64_t seed = 7;                    ///< Of the random numbers.
    std::optional<int> discs;                  ///< Unset: the usual number.
    std::optional<int> bars;                   ///< Unset: the usual number.
    std::optional<int> polygons;               ///< Unset: the usual number.
    int lights = 1;                            ///< Flickering lights.
    double light_frequency_hz = 100;           ///< Periods of a light per second.
    double noise_rate_hz = 0.1;                ///< Noise events per pixel and second.
    int hot_pixels = 4;                        ///< Pixels that report events all the time.
    double hot_pixel_rate_hz = 500;            ///< Events per hot pixel and second.
    double contrast_threshold = 0.2;           ///< Change of log brightness that causes an event.
    double threshold_spread = 0.03;            ///< Standard deviation among pixels, relative.
    std::uint64_t truth_interval_us = 10'000;  ///< Between two rows of ground truth.

    /// \throws std::invalid_argument with the first value out of range and its range
    void validate() const;
};

}  // namespace kelvora::simulation
