// SPDX-License-Identifier: MIT
#include "command_line/cluster_rows.hpp"

#include <cstddef>

#include "command_line/track_options.hpp"

namespace kelvora::tool {

std::vector<ClusterRow> rowsOf(const WindowClusters& found) {
    std::vector<ClusterRow> rows;
    rows.reserve(found.clusters.size());
    for (const ClusterGeometry& cluster : found.clusters) {
        rows.push_back({&cluster, nullptr});
    }
    for (const ClusterTracker::Track& track : found.tracks) {
        if (track.cluster >= 0) {
            rows[static_cast<std::size_t>(track.cluster)].track = &track;
        } else if (isFollowed(track)) {
            rows.push_back({&track.box, &track});
        }
    }
    return rows;
}

std::int64_t startTimeOf(const ClusterGeometry& cluster, const WindowClusters& found) {
    return cluster.start_time < 0
               ? -1
               : static_cast<std::int64_t>(found.time_origin) + cluster.start_time;
}

const char* stateOf(const ClusterRow& row) {
    if (row.track == nullptr) {
        return "none";
    }
    if (row.track->state == ClusterTracker::State::Tentative) {
        return "tentative";
    }
    return row.track->is_hidden ? "hidden" : "confirmed";
}

}  // namespace kelvora::tool
