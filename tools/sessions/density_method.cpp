// SPDX-License-Identifier: MIT
#include "sessions/density_method.hpp"

#include "kelvora/density_based_cluster_generator.hpp"
#include "sessions/event_labels.hpp"
#include "sessions/point_method.hpp"

namespace kelvora::tool {

namespace {

template <int DIM, typename T>
class DensityMethod : public ClusteringMethod {
public:
    DensityMethod(const Settings& settings, recording::SensorSize sensor)
        : scales(settings.point.scales()),
          is_ordered(settings.density.jobs == 1),
          generator(sensor.width, sensor.height, scales.x, scales.y, scales.time, POLARITY_FREE,
                    settings.point.capacity, settings.point.timeLength(), settings.density.eps,
                    settings.density.min_pts, settings.density.jobs) {}

    void cluster(const recording::Window& window, WindowClusters& found) override {
        feed(generator, window);
        generator.generateClusters(window.end_time, found.clusters);
        found.time_origin = originOf(window);
        found.centroids.clear();
        labelEvents<DIM, T>(generator, window, scales, found.labels);
        // With several jobs, the library does not specify the order of clusters.
        if (!is_ordered) {
            sortByFirstEvent(found);
        }
    }

private:
    EventScales scales;
    bool is_ordered;
    DensityBasedClusterGenerator<DIM, T> generator;
};

}  // namespace

std::unique_ptr<ClusteringMethod> makeDensityMethod(const Settings& settings,
                                                    recording::SensorSize sensor) {
    return makePointMethod<DensityMethod>(settings, sensor);
}

}  // namespace kelvora::tool
