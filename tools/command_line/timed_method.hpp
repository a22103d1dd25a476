// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

#include "command_line/centroid_method.hpp"
#include "command_line/density_method.hpp"
#include "command_line/grid_method.hpp"
#include "kelvora/cluster_geometry.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// The methods that can be timed, by their names on the command line.
enum class TimedMethod { Grid, Density2d, Density3d, Centroid2d, Centroid3d };

/// Parameters of the methods. Points are made with the defaults of `PointOptions`.
struct TimedMethodOptions {
    GridOptions grid;
    DensityOptions density;
    CentroidOptions centroid;
};

/// Clusters one window the way a program would: feeds a generator, then generates clusters.
using ClusterWindow =
    std::function<void(const recording::Window& window, std::vector<ClusterGeometry>& clusters)>;

ClusterWindow makeTimedMethod(TimedMethod method, recording::SensorSize sensor,
                              const TimedMethodOptions& options);

}  // namespace kelvora::tool
