// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/cluster_tracker.hpp"

namespace kelvora::test {

using Track = ClusterTracker::Track;
using TrackState = ClusterTracker::State;

constexpr std::uint64_t kUpdateInterval = 10'000;  // microseconds

inline ClusterGeometry boxAround(float x, float y, float width, float height,
                                 std::uint64_t timestamp) {
    return {x - width / 2, y - height / 2, width, height, timestamp};
}

/// A square of 20 pixels.
inline ClusterGeometry square(float x, float y, std::uint64_t timestamp) {
    return boxAround(x, y, 20, 20, timestamp);
}

/// Updates a tracker several times with the same boxes: first at `begin`, then every 10 ms.
///
/// \returns the ids of the last update.
inline std::vector<int> showRepeatedly(ClusterTracker& tracker,
                                       std::vector<ClusterGeometry> clusters, int updates,
                                       std::uint64_t begin = 0) {
    std::vector<int> ids;
    for (int i = 0; i < updates; ++i) {
        for (ClusterGeometry& cluster : clusters) {
            cluster.timestamp = begin + static_cast<std::uint64_t>(i) * kUpdateInterval;
        }
        ids = tracker.update(clusters);
    }
    return ids;
}

}  // namespace kelvora::test
