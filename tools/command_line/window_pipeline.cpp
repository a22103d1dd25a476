// SPDX-License-Identifier: MIT
#include "command_line/window_pipeline.hpp"

#include <algorithm>
#include <utility>

#include "command_line/interrupt.hpp"

namespace kelvora::tool {

WindowPipeline::WindowPipeline(std::unique_ptr<ClusteringMethod> method_,
                               const OutputOptions& output, const TrackOptions& track,
                               recording::SensorSize sensor, std::uint64_t window_length_)
    : method(std::move(method_)),
      longest_gap(track.max_missed),
      window_length(window_length_),
      cluster_writer(output.clusters, output.format, track.is_wanted),
      pictures(output.pictures, sensor) {
    if (track.is_wanted) {
        tracker.emplace(track.makeTracker());
    }
    if (!output.points.empty()) {
        point_writer.emplace(output.points);
    }
    if (!output.centroids.empty()) {
        centroid_writer.emplace(output.centroids);
    }
    if (!output.tracks.empty()) {
        track_writer.emplace(output.tracks);
    }
}

void WindowPipeline::process(recording::WindowSlicer& slicer) {
    recording::Window window;
    while (!isInterrupted() && slicer.next(window)) {
        processWindow(window);
    }
}

void WindowPipeline::processWindow(const recording::Window& window) {
    first_start = first_start.value_or(window.start_time);
    const std::uint64_t last_number = window_count == 0 ? 0 : found.number;
    found.number = (window.start_time - *first_start) / window_length + 1;
    method->cluster(window, found);
    if (tracker) {
        track(found.number - last_number - 1);
    }
    cluster_writer.write(found);
    if (point_writer) {
        point_writer->write(window, found);
    }
    if (centroid_writer) {
        centroid_writer->write(window.end_time, found);
    }
    if (track_writer) {
        track_writer->add(found);
    }
    pictures.add(window, found);
    ++window_count;
    cluster_count += found.clusters.size();
}

/// Windows without events are windows in which no object was seen.
void WindowPipeline::track(std::uint64_t windows_skipped) {
    const auto enough = static_cast<std::uint64_t>(longest_gap) + 1;
    for (std::uint64_t i = 0; i < std::min(windows_skipped, enough); ++i) {
        tracker->update({});
    }
    tracker->update(found.clusters);
    found.tracks = tracker->getTracks();
}

void WindowPipeline::finish() {
    pictures.finish();
    if (track_writer) {
        track_writer->finish();
    }
}

}  // namespace kelvora::tool
