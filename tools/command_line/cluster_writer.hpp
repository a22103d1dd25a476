// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "command_line/clustering_method.hpp"
#include "recording/output_file.hpp"

namespace kelvora::tool {

enum class ClusterFormat {
    Csv,
    JsonLines,
    Mot  ///< As of the MOTChallenge: frame,id,left,top,width,height,1,-1,-1,-1 of tracks alone.
};

/// Writes one row per cluster: the end of its window, its box in pixels, and its extent in time
/// where it is known (start -1 and duration 0 where not), all times in microseconds.
///
/// With tracks, the number of the cluster's track follows (0 for none), its velocity in pixels per
/// second and its state: `confirmed`, `tentative` or `none`. Tracks that are `hidden` have rows of
/// their own after those of the clusters, with the predicted box.
class ClusterWriter {
public:
    /// \param path  A file, or "-" for standard output.
    /// \throws recording::RecordingError  if the file cannot be written; likewise `write`.
    ClusterWriter(const std::filesystem::path& path, ClusterFormat format_, bool with_tracks_);

    /// Writes the clusters of one window; afterwards, the system has them all.
    void write(const WindowClusters& found);

private:
    recording::OutputFile file;
    ClusterFormat format;
    bool with_tracks;
};

}  // namespace kelvora::tool
