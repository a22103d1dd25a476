// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <nanoflann.hpp>
#include <vector>

#include "kelvora/export.hpp"
#include "kelvora/kd_point.hpp"
#include "kelvora/kd_tree.hpp"

namespace kelvora {

/// Groups points by density: DBSCAN, after M. Ester, H.-P. Kriegel, J. Sander, X. Xu: "A
/// Density-Based Algorithm for Discovering Clusters in Large Spatial Databases
/// with Noise", KDD 1996.
///
/// A point with enough neighbours closer than a radius is a core point. Core points that are
/// neighbours belong to the same cluster. A point that is not core but has a core neighbour is a
/// border point, and belongs to the cluster of that neighbour. All other points are noise and
/// belong to no cluster.
///
/// \code{.cpp}
/// using Clustering = kelvora::DensityClustering<2, float>;
/// Clustering clustering(2.0, 3);
/// std::vector<Clustering::Point> points = {0, 1, 2, 20, 40, 41, 42};  // each on the diagonal
/// std::vector<std::vector<std::size_t>> clusters;
/// std::vector<std::vector<float>> boxes;
/// clustering.generateClustersMultiThread(points, clusters, boxes, 1);
/// std::cout << clusters.size() << " clusters of " << clusters[0].size() << " points\n";
/// \endcode
///
/// Only one thread at a time may use an object; debug builds assert this.
///
/// \note Results deliberately differ between one job and several:
/// - With one job, a point is core if at least `min_pts` points lie within the radius, itself
///   included. With several, at least `min_pts` other points must.
/// - With one job, a border point belongs to the first cluster that reaches it. With several, it
///   joins the clusters of all its core neighbours into one.
/// - With one job, boxes are exact. With several, the first point of a cluster does not count for
///   the largest coordinates, which start at 0 instead: an extent is too small if only the first
///   point lies at the far end, and too large if all coordinates are negative.
/// \note Points with a coordinate that is not finite have no neighbours: they are noise.
///
/// \tparam DIM  2 or 3.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class DensityClustering {
public:
    /// The type of the points.
    using Point = KDPoint<DIM, T>;

    /// Neither parameter is checked.
    ///
    /// \param eps  The radius, in the unit of the coordinates. Points at exactly this distance are
    ///     not neighbours.
    /// \param min_pts  Points that make a neighbourhood dense. With 0 or a negative number there
    ///     are no clusters.
    DensityClustering(double eps, int min_pts);
    /// Frees the buffers kept between calls.
    ~DensityClustering();

    /// \cond no copies
    DensityClustering(const DensityClustering&) = delete;
    DensityClustering& operator=(const DensityClustering&) = delete;
    /// \endcond

    /// Clusters `points`. With one job, n points with m neighbours on average take about
    /// n log n + n m time, and 100 bytes of memory per point (`float`). With several jobs, time and
    /// memory hardly depend on m: they take about n log n time and 60 bytes per point. If the
    /// points are too far apart for the radius, several jobs search a tree, and take as
    /// long as one job.
    ///
    /// With one job and more than 300 neighbours on average, estimated from a sample, groups of
    /// points that are all neighbours count as one: points at the same position take n log n time
    /// however many they are, and 200 bytes of memory per point (`float`).
    ///
    /// If an exception is thrown, `clusters` and `boxes` may hold some of the results. The object
    /// can be used again.
    ///
    /// \param points  Must not change during the call; not used afterwards.
    /// \param clusters  Emptied first. Receives the point indices of each cluster. With one job,
    ///     clusters are in the order of their first core points. With several, clusters are in any
    ///     order, and their indices ascend.
    /// \param boxes  Emptied first. Receives for each cluster, in the same order, the smallest
    ///     coordinate on each axis, then the extent on each axis.
    /// \param n_jobs  Threads that search for neighbours, at least 1. With 1, no thread is started.
    /// \throws std::runtime_error  "n_jobs must be greater than 0"; nothing changes.
    /// \throws std::length_error  with more than 2^30 points.
    /// \throws std::system_error  if a thread cannot be started.
    void generateClustersMultiThread(const std::vector<Point>& points,
                                     std::vector<std::vector<std::size_t>>& clusters,
                                     std::vector<std::vector<T>>& boxes, unsigned char n_jobs);

private:
    using Neighbours = std::vector<nanoflann::ResultItem<std::size_t, T>>;

    KELVORA_NO_EXPORT void generateClustersPrivate(std::vector<std::vector<std::size_t>>& clusters,
                                                   std::vector<std::vector<T>>& boxes);
    KELVORA_NO_EXPORT void generateClustersMultiThreadPrivate(
        std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& boxes,
        unsigned char n_jobs);
    KELVORA_NO_EXPORT void thouroughSearch();

    struct KELVORA_NO_EXPORT Engines;

    KELVORA_NO_EXPORT std::size_t requiredPoints() const;
    KELVORA_NO_EXPORT void runWorkers(unsigned char n_jobs);

    double eps;
    int min_pts;
    // Unused, but part of the layout: `engines` holds the working data in less memory.
    KDTree<DIM, T> kd_tree;
    std::vector<bool> visited;
    std::vector<std::uint32_t> unused;
    Neighbours seed_list;
    Neighbours neighbour_list;
    std::vector<std::vector<std::size_t>> neighbour_lists;
    std::atomic<std::size_t> next_point;  ///< Next block of points to search or join.
    std::unique_ptr<Engines> engines;
};

extern template class KELVORA_EXPORT DensityClustering<2, float>;
extern template class KELVORA_EXPORT DensityClustering<2, double>;
extern template class KELVORA_EXPORT DensityClustering<3, float>;
extern template class KELVORA_EXPORT DensityClustering<3, double>;

}  // namespace kelvora
