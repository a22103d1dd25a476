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
#include "recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// Clusters window after window, and hands the results to whoever wants them.
class WindowPipeline {
public:
    /// \param window_length  Microseconds.
    /// \throws std::runtime_error  if a file cannot be written; likewise the other operations.
    WindowPipeline(std::unique_ptr<ClusteringMethod> method, const OutputOptions& output,
                   const TrackOptions& track, recording::SensorSize sensor,
                   std::uint64_t window_length);

    /// Takes all windows that are complete, up to an interrupt.
    void process(recording::WindowSlicer& slicer);

    /// Writes what is known at the end only.
    void finish();

    /// Tells what was found so far.
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
