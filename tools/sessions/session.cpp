// SPDX-License-Identifier: MIT
#include "sessions/session.hpp"

#include <algorithm>
#include <utility>

#include "sessions/cluster_extents.hpp"
#include "sessions/methods.hpp"

namespace kelvora::tool {

Session::Session(const Settings& settings, recording::SensorSize sensor)
    : Session(methodOf(settings.method).make(settings, sensor), settings) {}

Session::Session(std::unique_ptr<ClusteringMethod> method_, const Settings& settings)
    : method(std::move(method_)),
      longest_gap(settings.track.max_missed),
      window_length(settings.windows.window.microseconds),
      keep_zero_boxes(settings.point.keep_zero_boxes) {
    if (settings.track.is_wanted) {
        tracker.emplace(settings.track.makeTracker());
    }
}

const WindowClusters& Session::cluster(const recording::Window& window) {
    first_start = first_start.value_or(window.start_time);
    const std::uint64_t last_number = window_count == 0 ? 0 : found.number;
    found.number = (window.start_time - *first_start) / window_length + 1;
    method->cluster(window, found);
    measureExtents(window, found);
    if (!keep_zero_boxes) {
        replaceZeroBoxes(window, found);
    }
    if (tracker) {
        track(found.number - last_number - 1);
    }
    ++window_count;
    cluster_count += found.clusters.size();
    return found;
}

void Session::add(const Event2D* events, std::size_t count) {
    if (!method->takeEarly({0, 0, events, events + count})) {
        pending.insert(pending.end(), events, events + count);
    }
}

const WindowClusters& Session::finishWindow(std::uint64_t end_time) {
    finished.swap(pending);
    pending.clear();
    return cluster({end_time, end_time, finished.data(), finished.data() + finished.size()});
}

/// For the tracker, windows without events are windows without clusters.
void Session::track(std::uint64_t windows_skipped) {
    const auto enough = static_cast<std::uint64_t>(longest_gap) + 1;
    for (std::uint64_t i = 0; i < std::min(windows_skipped, enough); ++i) {
        tracker->update({});
    }
    tracker->update(found.clusters);
    found.tracks = tracker->getTracks();
}

}  // namespace kelvora::tool
