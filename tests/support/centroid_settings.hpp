// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/pixels.hpp"
#include "support/point_generator_settings.hpp"
#include "support/points.hpp"

namespace kelvora::test {

/// Named constructor arguments of a centroid-based generator.
///
/// By default there is one cluster of all events, and their number is unlimited.
struct CentroidSettings : PointGeneratorSettings<CentroidSettings> {
    unsigned long long k_clusters = 1;
    unsigned long long max_iter = 20;
    double tol = 1e-6;

    CentroidSettings& clusters(unsigned long long k) {
        k_clusters = k;
        return *this;
    }
    CentroidSettings& iterations(unsigned long long most, double tolerance = 1e-6) {
        max_iter = most;
        tol = tolerance;
        return *this;
    }

    template <class Kind>
    CentroidBasedClusterGenerator<Kind::kDim, typename Kind::T> build() const {
        return {sensor_width, sensor_height,   scale_width, scale_height, scale_time, filter_type,
                max_capacity, max_time_length, k_clusters,  max_iter,     tol};
    }
};

/// The points of each cluster.
template <class Kind, class Generator>
std::vector<typename Kind::Points> pointsOf(Generator& generator, bool restore_scale = true) {
    std::vector<typename Kind::Points> points;
    generator.getClusterPoints(points, restore_scale);
    return points;
}

/// The columns of all points of the last call, cluster by cluster: with one cluster, in the order of
/// their events.
template <class Kind, class Generator>
std::vector<int> columnsOf(Generator& generator) {
    std::vector<int> columns;
    for (const auto& cluster : pointsOf<Kind>(generator)) {
        for (const auto& point : cluster) {
            columns.push_back(static_cast<int>(point.coordinates[0]));
        }
    }
    return columns;
}

/// The columns of the points that are clustered after feeding some events.
template <class Kind, class Generator>
std::vector<int> columnsAfter(Generator& generator, const std::vector<Pixel>& pixels) {
    clusterPixels(generator, pixels);
    return columnsOf<Kind>(generator);
}

/// Sizes of the clusters. The output parameter is not empty before.
template <class Generator>
std::vector<unsigned long long> sizesOf(Generator& generator) {
    std::vector<unsigned long long> sizes = {9, 9, 9, 9, 9, 9, 9};
    generator.getClusterSizes(sizes);
    return sizes;
}

/// Centroids of the clusters. The output parameter is not empty before.
template <class Kind, class Generator>
typename Kind::Points centroidsOf(Generator& generator) {
    auto centroids = line<Kind>({9, 9, 9, 9, 9, 9, 9});
    generator.getClusterCentroids(centroids);
    return centroids;
}

}  // namespace kelvora::test
