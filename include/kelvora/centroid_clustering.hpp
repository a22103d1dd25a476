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

/// Divides points into k clusters around centroids: k-means, by the iteration of S. P. Lloyd: "Least
/// Squares Quantization in PCM", IEEE Transactions on Information Theory 28(2), 1982.
///
/// The first centroids are points that lie far from each other, found by furthest-point sampling
/// (T. F. Gonzalez: "Clustering to Minimize the Maximum Intercluster Distance", Theoretical Computer
/// Science 38, 1985) from one point drawn at random. Each iteration assigns every point to its
/// nearest centroid and then moves each centroid to the mean of its points. A centroid without
/// points moves to the point that lies furthest from its own centroid.
///
/// One object serves one caller at a time.
///
/// \note The draw is seeded by the system: two runs on the same points may differ, and there is no
/// way to fix the seed.
/// \note Centroids are moved once more after the last assignment: a point may lie closer to another
/// cluster's centroid than to that of its own.
/// \note A point with a coordinate that is not finite has no nearest centroid, and falls to the
/// first cluster.
///
/// \tparam DIM  2 or 3.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class CentroidClustering {
public:
    /// What is clustered.
    using Point = KDPoint<DIM, T>;

    /// \param k  Number of clusters, at least 1.
    /// \param max_iter  Most iterations, at least 1.
    /// \param tol  Stop when the sum of the squared distances of all points to their centroids
    ///     changes by less than this from one iteration to the next; squared units of the
    ///     coordinates, larger than 0. NaN is not refused, and never stops early. An iteration that
    ///     found a centroid without points does not stop either.
    /// \throws std::runtime_error  for an invalid argument.
    CentroidClustering(std::size_t k, std::size_t max_iter, double tol);
    /// Frees what the runs kept.
    ~CentroidClustering();

    /// \cond no copies
    CentroidClustering(const CentroidClustering&) = delete;
    CentroidClustering& operator=(const CentroidClustering&) = delete;
    /// \endcond

    /// Clusters `points`. For n of them, time about n k for the first centroids; per iteration about n,
    /// with a factor that grows slowly with k.
    ///
    /// \param points  Not used after the call. If there are fewer than k, there are no clusters and
    ///     no centroids, and the counts stay as they were.
    /// \param clusters  Emptied first; then k lists of the indices of points, ascending. Lists are
    ///     empty where several centroids coincide.
    /// \param cluster_boxes  Emptied first; then for each cluster, in the same order, the smallest
    ///     coordinate on each axis followed by the extent on each axis. The box of a cluster without
    ///     points has the largest number as minimum and minus infinity as extent.
    void generateClusters(const std::vector<Point>& points,
                          std::vector<std::vector<std::size_t>>& clusters,
                          std::vector<std::vector<T>>& cluster_boxes);

    /// Replaces `out` by the k centroids of the last run, in the order of the clusters; none if it
    /// had fewer points than that.
    /// \param out  In the unit of the points.
    void getCentroids(std::vector<Point>& out) const;

    /// Replaces `out` by the number of points of each cluster of the last run that had enough of
    /// them; zeros before the first.
    /// \param out  In the order of the clusters.
    /// \note Never gets shorter: if k was larger once, zeros follow.
    void getNumPointsPerCluster(std::vector<std::size_t>& out) const;

    /// Sets the number of clusters from the next run on.
    /// \param k  At least 1.
    /// \returns whether it was set: false, and nothing changes, for 0.
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
    KDTree<DIM, T> kd_tree;  ///< Over `centroids`, as they were before they moved last.
    std::vector<Point> centroids;
    std::vector<std::size_t> num_points_per_cluster;
    std::vector<std::size_t> labels;         ///< The cluster of each point.
    std::vector<std::size_t> nearest_index;  ///< What the tree answers, kept to allocate once.
    std::vector<T> nearest_squared_distance;
};

extern template class KELVORA_EXPORT CentroidClustering<2, float>;
extern template class KELVORA_EXPORT CentroidClustering<2, double>;
extern template class KELVORA_EXPORT CentroidClustering<3, float>;
extern template class KELVORA_EXPORT CentroidClustering<3, double>;

}  // namespace kelvora
