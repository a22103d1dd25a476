// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora::benchmarks {

/// The clustering around centroids as one would write it down first, to measure the library against:
/// each seed is found in one pass over the distances and takes another to lower them, and each
/// iteration builds a nanoflann tree over the centroids, twice, and asks it once per point.
template <int DIM, typename T>
class LiteralKmeans {
public:
    using Point = KDPoint<DIM, T>;

    /// The same as those of `kelvora::CentroidClustering`, and not checked.
    LiteralKmeans(std::size_t k, std::size_t max_iter, double tol);

    /// With a first centroid drawn at random, as the library does. Needs at least k points.
    void generateClusters(const std::vector<Point>& points,
                          std::vector<std::vector<std::size_t>>& clusters,
                          std::vector<std::vector<T>>& cluster_boxes);

    /// With point number `first` as first centroid.
    void generateClustersFrom(std::size_t first, const std::vector<Point>& points,
                              std::vector<std::vector<std::size_t>>& clusters,
                              std::vector<std::vector<T>>& cluster_boxes);

    /// Chooses the centroids to begin with, the first of which is point number `first`.
    void furthestPointSample(std::size_t first, const std::vector<Point>& points);

    const std::vector<Point>& getCentroids() const { return centroids; }

private:
    void iterate(const std::vector<Point>& points);
    double assignPoints(const std::vector<Point>& points, std::vector<Point>& sums);
    bool moveCentroids(const std::vector<Point>& points, std::vector<Point>& sums);
    std::size_t furthestFromCentroid(const std::vector<Point>& points) const;
    void report(const std::vector<Point>& points, std::vector<std::vector<std::size_t>>& clusters,
                std::vector<std::vector<T>>& cluster_boxes) const;

    std::size_t k;
    std::size_t max_iter;
    double tol;
    std::vector<Point> centroids;
    std::vector<std::size_t> num_points_per_cluster;
    std::vector<std::size_t> labels;
};

extern template class LiteralKmeans<2, float>;
extern template class LiteralKmeans<2, double>;
extern template class LiteralKmeans<3, float>;

}  // namespace kelvora::benchmarks
