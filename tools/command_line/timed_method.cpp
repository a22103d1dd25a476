// SPDX-License-Identifier: MIT
#include "command_line/timed_method.hpp"

#include <memory>

#include "command_line/point_method.hpp"
#include "kelvora/centroid_based_cluster_generator.hpp"
#include "kelvora/density_based_cluster_generator.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"

namespace kelvora::tool {

namespace {

ClusterWindow makeGrid(recording::SensorSize sensor, const GridOptions& options) {
    // A shared pointer, because functions must be copyable and generators are not.
    const auto generator = std::make_shared<GridBasedClusterGenerator>(
        sensor.width, sensor.height, options.cell_width, options.cell_height,
        options.max_cluster_size, options.min_cluster_size, POLARITY_FREE,
        !options.count_every_event, options.activation_threshold);
    return [generator](const recording::Window& window, std::vector<ClusterGeometry>& clusters) {
        generator->processEvents(window.first, window.size());
        generator->generateClusters(window.end_time, clusters);
    };
}

template <class Generator, class... Parameters>
ClusterWindow makePointGenerator(recording::SensorSize sensor, const Parameters&... parameters) {
    const PointOptions points;
    const EventScales scales = points.scales();
    const auto generator = std::make_shared<Generator>(
        sensor.width, sensor.height, scales.x, scales.y, scales.time, POLARITY_FREE,
        points.capacity, points.timeLength(), parameters...);
    return [generator](const recording::Window& window, std::vector<ClusterGeometry>& clusters) {
        feed(*generator, window);
        generator->generateClusters(window.end_time, clusters);
    };
}

template <int DIM>
ClusterWindow makeDensity(recording::SensorSize sensor, const DensityOptions& options) {
    return makePointGenerator<DensityBasedClusterGenerator<DIM, float>>(
        sensor, options.eps, options.min_pts, options.jobs);
}

template <int DIM>
ClusterWindow makeCentroid(recording::SensorSize sensor, const CentroidOptions& options) {
    return makePointGenerator<CentroidBasedClusterGenerator<DIM, float>>(
        sensor, options.clusters, options.max_iter, options.tol);
}

}  // namespace

ClusterWindow makeTimedMethod(TimedMethod method, recording::SensorSize sensor,
                              const TimedMethodOptions& options) {
    switch (method) {
        case TimedMethod::Density2d:
            return makeDensity<2>(sensor, options.density);
        case TimedMethod::Density3d:
            return makeDensity<3>(sensor, options.density);
        case TimedMethod::Centroid2d:
            return makeCentroid<2>(sensor, options.centroid);
        case TimedMethod::Centroid3d:
            return makeCentroid<3>(sensor, options.centroid);
        default:
            return makeGrid(sensor, options.grid);
    }
}

}  // namespace kelvora::tool
