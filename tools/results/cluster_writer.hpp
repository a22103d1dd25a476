// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "recording/output_file.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

enum class ClusterFormat {
    Csv,
    JsonLines,
    Mot  ///< MOTChallenge, tracks only: frame,id,left,top,width,height,1,-1,-1,-1.
};

/// Writes one row per cluster: the end of its window, its box in pixels, and its start time and
/// duration (-1 and 0 if unknown), and its number of events (-1 if unknown). All times are in
/// microseconds.
///
/// With tracks, the number of the cluster's track follows (0 for none), its velocity in pixels per
/// second and its state: `confirmed`, `tentative` or `none`. `hidden` tracks follow the clusters,
/// in separate rows with the predicted box.
class ClusterWriter {
public:
    /// \param path  A file, or "-" for standard output.
    /// \throws recording::RecordingError  if the file cannot be written. The other functions throw
    ///     the same.
    ClusterWriter(const std::filesystem::path& path, ClusterFormat format_, bool with_tracks_,
                  const recording::WriteOptions& options = {});

    /// Writes the clusters of one window and flushes them to the file.
    void write(const WindowClusters& found);

    /// Completes the file.
    void close() { file.close(); }

private:
    recording::OutputFile file;
    ClusterFormat format;
    bool with_tracks;
};

}  // namespace kelvora::tool
