// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "command_line/clustering_method.hpp"
#include "kelvora/cluster_geometry.hpp"
#include "kelvora/cluster_tracker.hpp"

namespace kelvora::tool {

/// One row of results: a cluster, or the predicted box of a hidden object.
struct ClusterRow {
    const ClusterGeometry* box;
    const ClusterTracker::Track* track;  ///< Null without a track.
};

/// The rows of a window: its clusters, then the objects hidden in them. They point into `found`.
std::vector<ClusterRow> rowsOf(const WindowClusters& found);

/// Absolute start time of a cluster, microseconds; -1 if unknown.
std::int64_t startTimeOf(const ClusterGeometry& cluster, const WindowClusters& found);

/// `confirmed`, `tentative`, `hidden`, or `none` without a track.
const char* stateOf(const ClusterRow& row);

}  // namespace kelvora::tool
