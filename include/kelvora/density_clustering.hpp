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
/// Density-Based Algorithm for Discovering Clusters in Large Spatial Databases with Noise", KDD
/// 1996.
///
/// A point with enough neighbours closer than a radius is a core point. Core points that are
/// neighbours of each other belong to one cluster, and so does a point that is a neighbour of a
/// core point without being one itself, a border point. All others are noise and belong to no
/// cluster.
///
/// One object serves one caller at a time.
///
/// \note One and several jobs differ on purpose:
/// - With one job, a point is core if at least `min_pts` points lie within the radius, itself
///   included. With more, if at least `min_pts` others do.
/// - With one job, a border point belongs to the first cluster that reaches it. With more, it joins
///   the clusters of all core points it is a neighbour of into one.
/// - With one job, boxes are exact. With more, the cluster's first point does not count for the
///   largest coordinates, which start at 0 instead: an extent is too small if the first point alone
///   lies at the far end, and too large if all coordinates are negative.
/// \note Points with a coordinate that is not finite have no neighbours: they are noise.
///
/// \tparam DIM  2 or 3.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class DensityClustering {
public:
    /// What is clustered.
    using Point = KDPoint<DIM, T>;

    /// \param eps  The radius, in the unit of the coordinates. Points at exactly this distance are
    ///     not neighbours.
    /// \param min_pts  Points that a neighbourhood needs to be dense. Neither is checked; with 0 or
    ///     a negative number there are no clusters.
    DensityClustering(double eps, int min_pts);
    /// Frees what the runs kept.
    ~DensityClustering();

    /// \cond no copies
    DensityClustering(const DensityClustering&) = delete;
    DensityClustering& operator=(const DensityClustering&) = delete;
    /// \endcond

    /// Clusters `points`. With one job, about n log n + n m time for n points with m neighbours on
    /// average, and 100 bytes of memory per point (`float`). With several, time and memory hardly
    /// depend on m, and 60 bytes per point are enough: about n log n time, unless the points lie so far
    /// apart for the radius that a tree has to be searched, as with one job.
    ///
    /// \param points  Must not change during the call; not used afterwards.
    /// \param clusters  Emptied first; then the indices of each cluster's points. With one job,
    ///     clusters come in the order of their first core points; with more, in any order, each
    ///     with ascending indices.
    /// \param boxes  Emptied first; then for each cluster, in the same order, the smallest
    ///     coordinate on each axis followed by the extent on each axis.
    /// \param n_jobs  Threads that look for neighbours, at least 1. With 1, none is started.
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
    // Established members, without use: the engines keep the like of them in less memory.
    KDTree<DIM, T> kd_tree;
    std::vector<bool> visited;
    std::vector<std::uint32_t> unused;
    Neighbours seed_list;
    Neighbours neighbour_list;
    std::vector<std::vector<std::size_t>> neighbour_lists;
    std::atomic<std::size_t> next_point;  ///< The next block of points to be searched or joined.
    std::unique_ptr<Engines> engines;
};

extern template class KELVORA_EXPORT DensityClustering<2, float>;
extern template class KELVORA_EXPORT DensityClustering<2, double>;
extern template class KELVORA_EXPORT DensityClustering<3, float>;
extern template class KELVORA_EXPORT DensityClustering<3, double>;

}  // namespace kelvora
