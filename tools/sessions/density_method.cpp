// SPDX-License-Identifier: MIT
#include "sessions/density_method.hpp"

#include "kelvora/density_based_cluster_generator.hpp"
#include "sessions/cluster_order.hpp"
#include "sessions/point_method.hpp"

namespace kelvora::tool {

namespace {

template <int DIM, typename T>
class DensityMethod : public ClusteringMethod {
public:
    DensityMethod(const Settings& settings, recording::SensorSize sensor)
        : is_ordered(settings.density.jobs == 1),
          generator(sensor.width, sensor.height, settings.point.scales().x,
                    settings.point.scales().y, settings.point.scales().time, POLARITY_FREE,
                    settings.point.capacity, settings.point.timeLength(), settings.density.eps,
                    settings.density.min_pts, settings.density.jobs) {}

    void cluster(const recording::Window& window, WindowClusters& found) override {
        feed(generator, window);
        generator.generateClusters(window.end_time, found.clusters);
        found.time_origin = originOf(window);
        found.centroids.clear();
        generator.getClusterLabels(found.labels);
        // With several jobs, the library does not specify the order of clusters.
        if (!is_ordered) {
            sortByFirstEvent(found);
        }
    }

private:
    bool is_ordered;
    DensityBasedClusterGenerator<DIM, T> generator;
};

}  // namespace

std::unique_ptr<ClusteringMethod> makeDensityMethod(const Settings& settings,
                                                    recording::SensorSize sensor) {
    return makePointMethod<DensityMethod>(settings, sensor);
}

}  // namespace kelvora::tool
