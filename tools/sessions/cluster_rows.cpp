// SPDX-License-Identifier: MIT
#include "sessions/cluster_rows.hpp"

#include <cstddef>

namespace kelvora::tool {

namespace {

ClusterRow toRow(const ClusterGeometry& box, const ClusterExtent& extent) {
    return {static_cast<std::int64_t>(box.timestamp),
            box.x,
            box.y,
            box.width,
            box.height,
            extent.start_time,
            extent.duration,
            extent.events};
}

const char* stateOf(const ClusterTracker::Track& track) {
    if (track.state == ClusterTracker::State::Tentative) {
        return "tentative";
    }
    return track.is_hidden ? "hidden" : "confirmed";
}

}  // namespace

std::vector<ClusterRow> rowsOf(const WindowClusters& found) {
    std::vector<ClusterRow> rows;
    rows.reserve(found.clusters.size());
    for (std::size_t i = 0; i < found.clusters.size(); ++i) {
        rows.push_back(toRow(found.clusters[i], found.extents[i]));
    }
    const auto setTrack = [](ClusterRow& row, const ClusterTracker::Track& track) {
        row.track = track;
        row.state = stateOf(track);
    };
    for (const ClusterTracker::Track& track : found.tracks) {
        if (track.cluster >= 0) {
            setTrack(rows[static_cast<std::size_t>(track.cluster)], track);
        } else if (isFollowed(track)) {
            rows.push_back(toRow(track.box, {-1, 0, 0}));
            setTrack(rows.back(), track);
        }
    }
    return rows;
}

bool isFollowed(const ClusterTracker::Track& track) {
    return track.state == ClusterTracker::State::Confirmed &&
           (track.cluster >= 0 || track.is_hidden);
}

}  // namespace kelvora::tool
