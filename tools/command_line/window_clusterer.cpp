// SPDX-License-Identifier: MIT
#include "command_line/window_clusterer.hpp"

#include <algorithm>
#include <utility>

namespace kelvora::tool {

WindowClusterer::WindowClusterer(std::unique_ptr<ClusteringMethod> method_,
                                 const TrackOptions& track, std::uint64_t window_length_)
    : method(std::move(method_)), longest_gap(track.max_missed), window_length(window_length_) {
    if (track.is_wanted) {
        tracker.emplace(track.makeTracker());
    }
}

const WindowClusters& WindowClusterer::cluster(const recording::Window& window) {
    first_start = first_start.value_or(window.start_time);
    const std::uint64_t last_number = window_count == 0 ? 0 : found.number;
    found.number = (window.start_time - *first_start) / window_length + 1;
    method->cluster(window, found);
    if (tracker) {
        track(found.number - last_number - 1);
    }
    ++window_count;
    cluster_count += found.clusters.size();
    return found;
}

/// For the tracker, windows without events are windows without clusters.
void WindowClusterer::track(std::uint64_t windows_skipped) {
    const auto enough = static_cast<std::uint64_t>(longest_gap) + 1;
    for (std::uint64_t i = 0; i < std::min(windows_skipped, enough); ++i) {
        tracker->update({});
    }
    tracker->update(found.clusters);
    found.tracks = tracker->getTracks();
}

}  // namespace kelvora::tool
