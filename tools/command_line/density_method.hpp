// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <limits>
#include <memory>
#include <optional>

#include "command_line/clustering_method.hpp"
#include "command_line/quantities.hpp"
#include "recording/sensor_size.hpp"

namespace kelvora::tool {

enum class Precision { Float, Double };

/// Parameters of the density method. The defaults suit windows of about 10 ms: the radius bridges gaps
/// in outlines, and noise and hot pixels stay below the number of events.
struct DensityOptions {
    int dim = 2;
    double eps = 10.0;
    int min_pts = 10;
    float scale_x = 1.0F;
    float scale_y = 1.0F;
    std::optional<float> scale_time;  ///< Instead of `us_per_pixel`.
    double us_per_pixel = 1000.0;
    int jobs = 1;
    unsigned long long capacity = std::numeric_limits<unsigned long long>::max();
    std::optional<Duration> time_length;
    Precision precision = Precision::Float;

    /// Scaled units per microsecond.
    float timeScale() const;
};

/// The longest window in three dimensions: the clusters' times in it are 32-bit microseconds.
constexpr Duration kLongestWindowIn3d{1'800'000'000};

/// Adds an option for each parameter of the density method.
void declareOptions(CLI::App& command, DensityOptions& options);

/// Clusters by density. Results are the same in every run, whatever the number of jobs.
///
/// \param with_labels  Whether to tell the cluster of each event, which takes some time.
/// \throws std::runtime_error  if the points cannot be reserved.
std::unique_ptr<ClusteringMethod> makeDensityMethod(recording::SensorSize sensor,
                                                    const DensityOptions& options,
                                                    bool with_labels);

}  // namespace kelvora::tool
