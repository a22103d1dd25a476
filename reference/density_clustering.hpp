// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

#include "kelvora/kd_point.hpp"
#include "reference/kd_tree.hpp"

namespace kelvora::reference {

/// The passes of `kelvora::DensityClustering` step by step: a nanoflann tree is asked for the
/// neighbours of each point. With one job, the order of members follows from the walk through the
/// tree and from how lists are partitioned. With several jobs, the neighbours of all core points are
/// kept, and joined at the end; clusters come in the order of their first members.
///
/// Points that are not finite have no neighbours.
template <int DIM, typename T>
class DensityClustering {
public:
    using Point = KDPoint<DIM, T>;
    using Clusters = std::vector<std::vector<std::size_t>>;
    using Boxes = std::vector<std::vector<T>>;

    /// As in the library, but not checked: `min_pts` must be positive.
    DensityClustering(double eps, int min_pts);
    ~DensityClustering();

    DensityClustering(const DensityClustering&) = delete;
    DensityClustering& operator=(const DensityClustering&) = delete;

    void generateClusters(const std::vector<Point>& points, Clusters& clusters, Boxes& boxes,
                          unsigned char n_jobs);

private:
    class SeedStack;
    using Neighbours = typename KDTree<DIM, T>::Neighbours;

    std::size_t search(std::size_t i, Neighbours& neighbours) const;
    void runOneJob(Clusters& clusters, Boxes& boxes);
    std::vector<std::size_t> expandCluster(std::size_t seed, std::vector<T>& box);
    void pushUnvisited(const Neighbours& neighbours);
    void runManyJobs(Clusters& clusters, Boxes& boxes, unsigned char n_jobs);
    void keepNeighbours();
    std::vector<std::size_t> joinNeighbours() const;
    void reportSets(std::vector<std::size_t>& parent, Clusters& clusters, Boxes& boxes) const;

    T radius;
    std::size_t min_pts;
    std::vector<Point> places;
    std::vector<bool> is_finite;
    std::unique_ptr<KDTree<DIM, T>> tree;
    std::vector<bool> visited;
    std::unique_ptr<SeedStack> seeds;
    Neighbours seed_list;
    Neighbours neighbour_list;
    std::vector<std::vector<std::size_t>> neighbour_lists;
    std::atomic<std::size_t> next_point;
};

extern template class DensityClustering<2, float>;
extern template class DensityClustering<2, double>;
extern template class DensityClustering<3, float>;
extern template class DensityClustering<3, double>;

}  // namespace kelvora::reference
