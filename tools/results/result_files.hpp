// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>

#include "kelvora/recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"
#include "results/centroid_writer.hpp"
#include "results/cluster_writer.hpp"
#include "results/pictures.hpp"
#include "results/point_writer.hpp"
#include "results/track_writer.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// Where results are written. An empty path disables the output.
struct OutputSettings {
    std::filesystem::path clusters = "-";
    ClusterFormat format = ClusterFormat::Csv;
    std::filesystem::path points;
    std::filesystem::path centroids;
    std::filesystem::path tracks;
    PictureOptions pictures;
    recording::WriteOptions write;
};

/// Writes the results of one window after another to all requested outputs.
class ResultFiles {
public:
    /// \throws std::runtime_error  if a file cannot be written. The other functions throw the same.
    ResultFiles(const OutputSettings& output, bool with_tracks, recording::SensorSize sensor);

    void write(const recording::Window& window, const WindowClusters& found);

    /// Writes the results that are only known at the end.
    void finish();

    /// Completes the files. Otherwise they are incomplete, and kept as `NAME.partial`.
    void close();

private:
    ClusterWriter cluster_writer;
    std::optional<PointWriter> point_writer;
    std::optional<CentroidWriter> centroid_writer;
    std::optional<TrackWriter> track_writer;
    Pictures pictures;
};

}  // namespace kelvora::tool
