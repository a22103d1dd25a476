// SPDX-License-Identifier: MIT
#include "sessions/centroid_method.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "sessions/cluster_order.hpp"
#include "sessions/point_method.hpp"

namespace kelvora::tool {

namespace {

template <int DIM, typename T>
class CentroidMethod : public ClusteringMethod {
public:
    CentroidMethod(const Settings& settings, recording::SensorSize sensor)
        : k(settings.centroid.clusters),
          scales(settings.point.scales()),
          generator(sensor.width, sensor.height, scales.x, scales.y, scales.time, POLARITY_FREE,
                    settings.point.capacity, settings.point.timeLength(), k,
                    settings.centroid.max_iter, settings.centroid.tol) {}

    void cluster(const recording::Window& window, WindowClusters& found) override {
        feed(generator, window);
        generator.generateClusters(window.end_time, found.clusters);
        found.time_origin = originOf(window);
        found.centroids.clear();
        if (found.clusters.empty()) {
            // The generator still has the centroids and points of an earlier window.
            ++windows_with_few_events;
            found.labels.assign(window.size(), kNoCluster);
            return;
        }
        readCentroids(found.centroids);
        generator.getClusterLabels(found.labels);
        sortByFirstEvent(found);
    }

    std::string remark() const override {
        return windows_with_few_events == 0
                   ? ""
                   : fmt::format(
                         "windows without clusters, because they had fewer than {1} events: {0}",
                         windows_with_few_events, k);
    }

private:
    void readCentroids(std::vector<ClusterCentroid>& found) {
        generator.getClusterCentroids(centroids);
        generator.getClusterSizes(sizes);
        for (std::size_t i = 0; i < centroids.size(); ++i) {
            const auto& coordinates = centroids[i].coordinates;
            ClusterCentroid centroid{static_cast<double>(coordinates[0]) / scales.x,
                                     static_cast<double>(coordinates[1]) / scales.y,
                                     {},
                                     sizes[i]};
            if constexpr (DIM == 3) {
                centroid.time_us = static_cast<double>(coordinates[2]) / scales.time;
            }
            found.push_back(centroid);
        }
    }

    unsigned long long k;
    EventScales scales;
    CentroidBasedClusterGenerator<DIM, T> generator;
    std::vector<KDPoint<DIM, T>> centroids;
    std::vector<unsigned long long> sizes;
    std::uint64_t windows_with_few_events = 0;
};

}  // namespace

std::unique_ptr<ClusteringMethod> makeCentroidMethod(const Settings& settings,
                                                     recording::SensorSize sensor) {
    return makePointMethod<CentroidMethod>(settings, sensor);
}

}  // namespace kelvora::tool
