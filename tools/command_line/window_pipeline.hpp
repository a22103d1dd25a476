// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "command_line/centroid_writer.hpp"
#include "command_line/cluster_writer.hpp"
#include "command_line/clustering_method.hpp"
#include "command_line/output_options.hpp"
#include "command_line/pictures.hpp"
#include "command_line/point_writer.hpp"
#include "command_line/track_options.hpp"
#include "command_line/track_writer.hpp"
#include "command_line/window_clusterer.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// Clusters one window after another, and writes the results to all requested outputs.
class WindowPipeline {
public:
    /// \param window_length  Microseconds.
    /// \throws std::runtime_error  if a file cannot be written. The other functions throw the same.
    WindowPipeline(std::unique_ptr<ClusteringMethod> method, const OutputOptions& output,
                   const TrackOptions& track, recording::SensorSize sensor,
                   std::uint64_t window_length);

    /// Processes all complete windows, or stops at an interrupt.
    void process(recording::WindowSlicer& slicer);

    /// Writes the results that are only known at the end.
    void finish();

    /// The clusterer, for a summary of the results so far.
    const WindowClusterer& windowClusterer() const { return clusterer; }

private:
    void processWindow(const recording::Window& window);

    WindowClusterer clusterer;
    ClusterWriter cluster_writer;
    std::optional<PointWriter> point_writer;
    std::optional<CentroidWriter> centroid_writer;
    std::optional<TrackWriter> track_writer;
    Pictures pictures;
};

}  // namespace kelvora::tool
