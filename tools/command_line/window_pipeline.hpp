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
#include "kelvora/cluster_tracker.hpp"
#include "recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// Clusters window after window, follows objects, and hands the results to whoever wants them.
class WindowPipeline {
public:
    /// \param window_length  Microseconds.
    /// \throws std::runtime_error  if a file cannot be written; likewise the other operations.
    WindowPipeline(std::unique_ptr<ClusteringMethod> method_, const OutputOptions& output,
                   const TrackOptions& track, recording::SensorSize sensor,
                   std::uint64_t window_length_);

    /// Takes all windows that are complete, up to an interrupt.
    void process(recording::WindowSlicer& slicer);

    /// Writes what is known at the end only.
    void finish();

    std::uint64_t windowCount() const { return window_count; }
    std::uint64_t clusterCount() const { return cluster_count; }

    /// What the user should know of the windows, or nothing.
    std::string remark() const { return method->remark(); }

private:
    void processWindow(const recording::Window& window);
    void track(std::uint64_t windows_skipped);

    std::unique_ptr<ClusteringMethod> method;
    std::optional<ClusterTracker> tracker;
    int longest_gap;  ///< Empty windows that end all tracks.
    std::uint64_t window_length;
    ClusterWriter cluster_writer;
    std::optional<PointWriter> point_writer;
    std::optional<CentroidWriter> centroid_writer;
    std::optional<TrackWriter> track_writer;
    Pictures pictures;
    WindowClusters found;
    std::optional<std::uint64_t> first_start;
    std::uint64_t window_count = 0;
    std::uint64_t cluster_count = 0;
};

}  // namespace kelvora::tool
