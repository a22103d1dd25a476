// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

#include "command_line/centroid_method.hpp"
#include "command_line/density_method.hpp"
#include "command_line/grid_method.hpp"
#include "kelvora/cluster_geometry.hpp"
#include "recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// The methods that can be timed, by the names of users.
enum class TimedMethod { Grid, Density2d, Density3d, Centroid2d, Centroid3d };

/// With which parameters. The points of the methods that work on them are made as `PointOptions` has
/// it by default.
struct TimedMethodOptions {
    GridOptions grid;
    DensityOptions density;
    CentroidOptions centroid;
};

/// Clusters one window: nothing but what a program does that uses the library, which is to feed a
/// generator and to generate clusters.
using ClusterWindow =
    std::function<void(const recording::Window& window, std::vector<ClusterGeometry>& clusters)>;

ClusterWindow makeTimedMethod(TimedMethod method, recording::SensorSize sensor,
                              const TimedMethodOptions& options);

}  // namespace kelvora::tool
