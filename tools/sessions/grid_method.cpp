// SPDX-License-Identifier: MIT
#include "sessions/grid_method.hpp"

namespace kelvora::tool {

GridMethod::GridMethod(const Settings& settings, recording::SensorSize sensor)
    : generator(sensor.width, sensor.height, settings.grid.cell_width, settings.grid.cell_height,
                settings.grid.max_cluster_size, settings.grid.min_cluster_size,
                settings.windows.polarity == Polarity::Separate ? POLARITY_SEPARATE : POLARITY_FREE,
                !settings.grid.count_every_event, settings.grid.activation_threshold) {}

bool GridMethod::takeEarly(const recording::Window& events) {
    generator.processEvents(events.first, events.size());
    return true;
}

void GridMethod::cluster(const recording::Window& window, WindowClusters& found) {
    generator.processEvents(window.first, window.size());
    generator.generateClusters(window.end_time, found.clusters);
    found.labels.clear();
    found.centroids.clear();
}

cv::Mat GridMethod::activeMap() {
    cv::Mat map;
    generator.getActiveMap(map);
    return map;
}

std::unique_ptr<ClusteringMethod> makeGridMethod(const Settings& settings,
                                                 recording::SensorSize sensor) {
    return std::make_unique<GridMethod>(settings, sensor);
}

}  // namespace kelvora::tool
