// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include "scoring/frame.hpp"

namespace kelvora::scoring {

/// Reads where objects truly were, from a table with the columns timestamp_us, id, x, y, width and
/// height. Objects are taken to move, or to be visible, where there is no column moving (0 or 1) or
/// visibility (0 to 1). Other columns are ignored.
///
/// \throws recording::RecordingError  if the file cannot be read, or has an object twice at a time.
std::vector<TruthBox> readTruth(const std::filesystem::path& path);

/// The rows of a file of clusters.
struct ClusterTable {
    std::vector<ClusterBox> clusters;
    bool has_tracks = false;    ///< Whether there is a column track_id.
    std::size_t tentative = 0;  ///< Rows left out, as their tracks are not yet confirmed.
    std::size_t untracked = 0;  ///< Rows left out, as they belong to no track.
};

/// Reads where clusters were found, from a table with the columns timestamp_us, x, y, width and
/// height, and of tracked clusters track_id (from 1) and state. Other columns are ignored.
///
/// Of tracked clusters, those count whose state is `confirmed` or `hidden`, as a tracker claims
/// objects at these places alone. Rows whose state is `none` are left out, whatever their track_id.
///
/// \param with_tentative  Whether rows whose state is `tentative` count, too.
/// \throws recording::RecordingError  if the file cannot be read, or has a track twice at a time.
ClusterTable readClusters(const std::filesystem::path& path, bool with_tentative);

}  // namespace kelvora::scoring
