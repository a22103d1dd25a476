// SPDX-License-Identifier: MIT
#include "command_line/window_pipeline.hpp"

#include <utility>

#include "command_line/interrupt.hpp"

namespace kelvora::tool {

WindowPipeline::WindowPipeline(std::unique_ptr<ClusteringMethod> method,
                               const OutputOptions& output, const TrackOptions& track,
                               recording::SensorSize sensor, std::uint64_t window_length)
    : clusterer(std::move(method), track, window_length),
      cluster_writer(output.clusters, output.format, track.is_wanted),
      pictures(output.pictures, sensor) {
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
    const WindowClusters& found = clusterer.cluster(window);
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
}

void WindowPipeline::finish() {
    pictures.finish();
    if (track_writer) {
        track_writer->finish();
    }
}

}  // namespace kelvora::tool
