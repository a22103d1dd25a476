// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "kelvora/cluster_tracker.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// One row of results: a cluster, or the predicted box of a hidden object. Times are in
/// microseconds, positions and sizes in pixels.
struct ClusterRow {
    std::int64_t timestamp;
    float x;
    float y;
    float width;
    float height;
    std::int64_t start_time;  ///< -1 if unknown.
    std::int64_t duration;
    std::int64_t events;            ///< -1 if unknown, 0 for a hidden object.
    ClusterTracker::Track track{};  ///< Its number is 0 without a track.
    const char* state = "none";     ///< `confirmed`, `tentative`, `hidden` or `none`.
};

/// The rows of a window: its clusters, then the objects hidden in them.
std::vector<ClusterRow> rowsOf(const WindowClusters& found);

/// Whether a track is also reported in windows in which no cluster is assigned to it.
bool isFollowed(const ClusterTracker::Track& track);

}  // namespace kelvora::tool
