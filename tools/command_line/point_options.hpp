// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <limits>
#include <optional>

#include "command_line/event_labels.hpp"
#include "command_line/quantities.hpp"

namespace kelvora::tool {

enum class Precision { Float, Double };

/// Which events become points, and how, for the methods that cluster points.
struct PointOptions {
    int dim = 2;
    float scale_x = 1.0F;
    float scale_y = 1.0F;
    std::optional<float> scale_time;  ///< Instead of `us_per_pixel`.
    double us_per_pixel = 1000.0;
    unsigned long long capacity = std::numeric_limits<unsigned long long>::max();
    std::optional<Duration> time_length;
    Precision precision = Precision::Float;

    EventScales scales() const;

    /// Window of the event counter, microseconds.
    unsigned long long timeLength() const;
};

/// The longest window in three dimensions. Times within it are 32-bit microseconds.
constexpr Duration kLongestWindowIn3d{1'800'000'000};

/// Adds an option for each field.
void declareOptions(CLI::App& command, PointOptions& options);

}  // namespace kelvora::tool
