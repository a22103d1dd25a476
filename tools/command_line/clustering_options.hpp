// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <memory>

#include "command_line/centroid_method.hpp"
#include "command_line/clustering_method.hpp"
#include "command_line/density_method.hpp"
#include "command_line/grid_method.hpp"
#include "command_line/point_options.hpp"
#include "command_line/recording_options.hpp"
#include "command_line/track_options.hpp"
#include "command_line/window_options.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::tool {

enum class Method { Grid, Density, Centroid };

/// The recording to cluster, and how.
struct ClusteringOptions {
    RecordingOptions recording;
    WindowOptions windows;
    Method method = Method::Grid;
    GridOptions grid;
    PointOptions point;
    DensityOptions density;
    CentroidOptions centroid;
    TrackOptions track;
};

/// Adds an option for each field.
void declareOptions(CLI::App& command, ClusteringOptions& options);

/// \throws CLI::ValidationError  for contradictory options.
void checkOptions(const ClusteringOptions& options);

/// The chosen method.
///
/// \param with_labels  Whether to label each event with its cluster, if the method can.
/// \throws std::runtime_error  if memory cannot be reserved.
std::unique_ptr<ClusteringMethod> makeMethod(const ClusteringOptions& options,
                                             recording::SensorSize sensor, bool with_labels);

}  // namespace kelvora::tool
