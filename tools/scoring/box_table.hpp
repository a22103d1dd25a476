// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

#include "scoring/frame.hpp"

namespace kelvora::scoring {

/// Reads the ground truth from a table with the columns timestamp_us, id, x, y, width and height.
/// Without a column moving (0 or 1), all objects move; without visibility (0 to 1), all are
/// visible. Other columns are ignored.
///
/// \param check  As for `TableReader`.
/// \throws recording::RecordingError  if the file cannot be read, or has two rows for an object at
///     the same time.
std::vector<TruthBox> readTruth(const std::filesystem::path& path,
                                const std::function<void()>& check = {});

/// The rows of a file of clusters.
struct ClusterTable {
    std::vector<ClusterBox> clusters;
    bool has_tracks = false;    ///< Whether the file has a column track_id.
    std::size_t tentative = 0;  ///< Omitted rows of unconfirmed tracks.
    std::size_t untracked = 0;  ///< Omitted rows without a track.
};

/// Reads clusters from a table with the columns timestamp_us, x, y, width and height and, for
/// tracked clusters, track_id (from 1) and state. Other columns are ignored.
///
/// Tracked clusters count if their state is `confirmed` or `hidden`, because these are the objects
/// that the tracker reports. Rows with the state `none` are omitted, regardless of their track_id.
///
/// \param with_tentative  Whether rows with the state `tentative` count, too.
/// \param check  As for `TableReader`.
/// \throws recording::RecordingError  if the file cannot be read, or has two rows for a track at
///     the same time.
ClusterTable readClusters(const std::filesystem::path& path, bool with_tentative,
                          const std::function<void()>& check = {});

}  // namespace kelvora::scoring
