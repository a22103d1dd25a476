// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/export.hpp"
#include "kelvora/kd_point.hpp"
#include "kelvora/kd_tree.hpp"

namespace kelvora {

template <int DIM, typename T>
class CentroidBasedClusterGenerator;
template <int DIM, typename T>
class NearestCentroid;

/// Divides points into k clusters around centroids: k-means, with the iteration of S. P. Lloyd:
/// "Least Squares Quantization in PCM", IEEE Transactions on Information Theory 28(2), 1982.
///
/// The first centroids are points far from each other. Furthest-point sampling (T. F. Gonzalez:
/// "Clustering to Minimize the Maximum Intercluster Distance", Theoretical Computer Science 38,
/// 1985) finds them, starting at a random point. Each iteration assigns every point to its nearest
/// centroid, then moves each centroid to the mean of its points. A centroid without points moves to
/// the point furthest from its own centroid.
///
/// \code{.cpp}
/// using Clustering = kelvora::CentroidClustering<2, float>;
/// Clustering clustering(2, 50, 0.01);
/// std::vector<Clustering::Point> points = {0, 1, 20, 21};  // each on the diagonal
/// std::vector<std::vector<std::size_t>> clusters;
/// std::vector<std::vector<float>> boxes;
/// clustering.generateClusters(points, clusters, boxes);
/// std::cout << clusters.size() << " clusters of " << clusters[0].size() << " points\n";
/// \endcode
///
/// Only one thread at a time may use an object.
///
/// \note The first centroid is drawn at random, with a seed from the system that cannot be set: two
/// runs on the same points may differ.
/// \note Centroids move once more after the last assignment: a point may be closer to the centroid
/// of another cluster than to its own.
/// \note A point with a coordinate that is not finite has no nearest centroid. It belongs to the
/// first cluster.
///
/// \tparam DIM  2 or 3.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class CentroidClustering {
public:
    /// The type of the points.
    using Point = KDPoint<DIM, T>;

    /// \param k  Number of clusters, at least 1.
    /// \param max_iter  Maximum number of iterations, at least 1.
    /// \param tol  Iterations end when the sum of the squared distances of all points to their
    ///     centroids changes by less than this, squared units of the coordinates, larger than 0.
    ///     NaN is accepted, and never ends them early. They also continue after an iteration that
    ///     found a centroid without points.
    /// \throws std::runtime_error  for an invalid argument.
    CentroidClustering(std::size_t k, std::size_t max_iter, double tol);
    /// Frees the buffers kept between calls.
    ~CentroidClustering();

    /// \cond no copies
    CentroidClustering(const CentroidClustering&) = delete;
    CentroidClustering& operator=(const CentroidClustering&) = delete;
    /// \endcond

    /// Clusters `points`. For n points, the first centroids take about n k time. Each iteration
    /// takes about n, with a factor that grows slowly with k.
    ///
    /// \param points  Not used after the call. If there are fewer than k, there are no clusters and
    ///     no centroids, and the counts stay the same.
    /// \param clusters  Emptied first. Receives k lists of point indices, each ascending. Lists are
    ///     empty where several centroids coincide.
    /// \param cluster_boxes  Emptied first. Receives for each cluster, in the same order, the
    ///     smallest coordinate on each axis, then the extent on each axis. The box of a cluster
    ///     without points has the largest number as minimum and minus infinity as extent.
    /// \note After an exception, the outputs and the centroids may hold some of the results. The
    /// object can be used again.
    void generateClusters(const std::vector<Point>& points,
                          std::vector<std::vector<std::size_t>>& clusters,
                          std::vector<std::vector<T>>& cluster_boxes);

    /// Replaces `out` by the centroids of the last call, in the order of the clusters.
    /// \param out  k centroids, in the unit of the points; none if there were fewer than k points.
    void getCentroids(std::vector<Point>& out) const;

    /// Replaces `out` by the number of points of each cluster. They are from the last call with at
    /// least k points, and zeros before the first such call.
    /// \param out  In the order of the clusters.
    /// \note Never gets shorter: if k was larger in an earlier call, zeros follow.
    void getNumPointsPerCluster(std::vector<std::size_t>& out) const;

    /// Sets the number of clusters for the next call.
    /// \param k  At least 1.
    /// \returns whether it was set. For 0, returns false and changes nothing.
    bool setClusterNumber(std::size_t k);

private:
    friend class CentroidBasedClusterGenerator<DIM, T>;

    KELVORA_NO_EXPORT void generateClustersPrivate(const std::vector<Point>& points,
                                                   std::vector<std::vector<std::size_t>>& clusters,
                                                   std::vector<std::vector<T>>& cluster_boxes);
    KELVORA_NO_EXPORT void furthestPointSample(const std::vector<Point>& points,
                                               std::vector<Point>& centroids);

    KELVORA_NO_EXPORT void iterate(const std::vector<Point>& points);
    KELVORA_NO_EXPORT double assignPoints(const std::vector<Point>& points,
                                          NearestCentroid<DIM, T>& nearest,
                                          std::vector<Point>& sums);
    KELVORA_NO_EXPORT bool moveCentroids(const std::vector<Point>& points,
                                         std::vector<Point>& sums);
    KELVORA_NO_EXPORT const Point& furthestFromCentroid(const std::vector<Point>& points) const;
    KELVORA_NO_EXPORT void reportClusters(const std::vector<Point>& points,
                                          std::vector<std::vector<std::size_t>>& clusters,
                                          std::vector<std::vector<T>>& cluster_boxes) const;

    std::size_t k;
    std::size_t max_iter;
    double tol;
    KDTree<DIM, T> kd_tree;  ///< Of the `centroids` before their last move.
    std::vector<Point> centroids;
    std::vector<std::size_t> num_points_per_cluster;
    std::vector<std::size_t> labels;         ///< The cluster of each point.
    std::vector<std::size_t> nearest_index;  ///< Result of the tree, kept to allocate once.
    std::vector<T> nearest_squared_distance;
};

extern template class KELVORA_EXPORT CentroidClustering<2, float>;
extern template class KELVORA_EXPORT CentroidClustering<2, double>;
extern template class KELVORA_EXPORT CentroidClustering<3, float>;
extern template class KELVORA_EXPORT CentroidClustering<3, double>;

}  // namespace kelvora
