// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "kelvora/cluster_tracker.hpp"

namespace kelvora::tool {

/// How to track objects from window to window.
struct TrackOptions {
    bool is_wanted = false;
    float max_distance = ClusterTracker::kDefaultMaxDistance;
    float max_size_change = ClusterTracker::kDefaultMaxSizeChange;
    int max_missed = ClusterTracker::kDefaultMaxMissed;
    int min_hits = ClusterTracker::kDefaultMinHits;

    ClusterTracker makeTracker() const {
        return ClusterTracker(max_distance, max_size_change, max_missed, min_hits);
    }
};

/// Adds an option for each field.
void declareOptions(CLI::App& command, TrackOptions& options);

/// Whether a track is also reported in windows in which no cluster is assigned to it.
bool isFollowed(const ClusterTracker::Track& track);

}  // namespace kelvora::tool
