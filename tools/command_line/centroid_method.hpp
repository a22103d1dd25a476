// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <memory>

#include "command_line/clustering_method.hpp"
#include "command_line/point_options.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::tool {

/// Parameters of the centroid method.
struct CentroidOptions {
    unsigned long long clusters = 0;  ///< No default: it depends on the scene.
    unsigned long long max_iter = 50;
    double tol = 1.0;
};

/// Adds an option for each parameter of the centroid method.
void declareOptions(CLI::App& command, CentroidOptions& options);

/// Divides all events of a window into a given number of clusters around centroids. Clusters
/// without events, for example from coinciding centroids, are omitted. Results differ from run to
/// run.
///
/// \throws std::runtime_error  if memory for the points cannot be reserved.
std::unique_ptr<ClusteringMethod> makeCentroidMethod(recording::SensorSize sensor,
                                                     const PointOptions& points,
                                                     const CentroidOptions& options);

}  // namespace kelvora::tool
