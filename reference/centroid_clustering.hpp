// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora::reference {

/// K-means of `kelvora::CentroidClustering` step by step, with the same arithmetic, so that results
/// are the same bit for bit. Each first centroid is found in one pass over the distances, and a
/// second pass updates them. Each iteration builds a nanoflann tree of the centroids and searches it
/// once per point.
///
/// Points must be finite, and at least as many as clusters.
template <int DIM, typename T>
class CentroidClustering {
public:
    using Point = KDPoint<DIM, T>;

    /// As in the library, but not checked.
    CentroidClustering(std::size_t k, std::size_t max_iter, double tol);

    /// With a first centroid drawn at random, as the library does.
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
    const std::vector<std::size_t>& getNumPointsPerCluster() const {
        return num_points_per_cluster;
    }

    /// The cluster of each point.
    const std::vector<std::size_t>& getLabels() const { return labels; }
    /// The centroids that the labels were found with, before they moved for the last time.
    const std::vector<Point>& getCentroidsOfLabels() const { return centroids_of_labels; }
    /// By how much each iteration changed the sum of squared distances.
    const std::vector<double>& getChangesOfTotal() const { return changes_of_total; }
    /// Whether a cluster without points got a centroid at some distance from all others.
    bool hasMovedCentroidFar() const { return has_moved_far; }

private:
    void iterate(const std::vector<Point>& points);
    double assignPoints(const std::vector<Point>& points, std::vector<Point>& sums);
    bool moveCentroids(const std::vector<Point>& points, std::vector<Point>& sums);
    std::size_t furthestFromCentroid(const std::vector<Point>& points);
    void report(const std::vector<Point>& points, std::vector<std::vector<std::size_t>>& clusters,
                std::vector<std::vector<T>>& cluster_boxes) const;

    std::size_t k;
    std::size_t max_iter;
    double tol;
    std::vector<Point> centroids;
    std::vector<std::size_t> num_points_per_cluster;
    std::vector<std::size_t> labels;
    std::vector<Point> centroids_of_labels;
    std::vector<double> changes_of_total;
    bool has_moved_far = false;
};

extern template class CentroidClustering<2, float>;
extern template class CentroidClustering<2, double>;
extern template class CentroidClustering<3, float>;
extern template class CentroidClustering<3, double>;

}  // namespace kelvora::reference
