// SPDX-License-Identifier: MIT
#include "results/result_files.hpp"

namespace kelvora::tool {

ResultFiles::ResultFiles(const OutputSettings& output, bool with_tracks,
                         recording::SensorSize sensor)
    : cluster_writer(output.clusters, output.format, with_tracks, output.write),
      pictures(output.pictures, sensor, output.write) {
    if (!output.points.empty()) {
        point_writer.emplace(output.points, output.write);
    }
    if (!output.centroids.empty()) {
        centroid_writer.emplace(output.centroids, output.write);
    }
    if (!output.tracks.empty()) {
        track_writer.emplace(output.tracks, output.write);
    }
}

void ResultFiles::write(const recording::Window& window, const WindowClusters& found) {
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

void ResultFiles::finish() {
    pictures.finish();
    if (track_writer) {
        track_writer->finish();
    }
}

void ResultFiles::close() {
    cluster_writer.close();
    if (point_writer) {
        point_writer->close();
    }
    if (centroid_writer) {
        centroid_writer->close();
    }
    if (track_writer) {
        track_writer->close();
    }
    pictures.close();
}

}  // namespace kelvora::tool
