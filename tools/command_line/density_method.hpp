// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <memory>

#include "command_line/clustering_method.hpp"
#include "command_line/point_options.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::tool {

/// Parameters of the density method. The defaults suit windows of about 10 ms: the radius bridges gaps
/// in outlines, and noise and hot pixels stay below the number of events.
struct DensityOptions {
    double eps = 10.0;
    int min_pts = 10;
    int jobs = 1;
};

/// Adds an option for each parameter of the density method.
void declareOptions(CLI::App& command, DensityOptions& options);

/// Clusters by density. Results are the same in every run, whatever the number of jobs.
///
/// \param with_labels  Whether to label each event with its cluster, which takes extra time.
/// \throws std::runtime_error  if memory for the points cannot be reserved.
std::unique_ptr<ClusteringMethod> makeDensityMethod(recording::SensorSize sensor,
                                                    const PointOptions& points,
                                                    const DensityOptions& options,
                                                    bool with_labels);

}  // namespace kelvora::tool
