// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <nanoflann.hpp>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora::benchmarks {

/// The density clustering as one would write it down first, to measure the library against: a
/// nanoflann tree, built twice, is asked for the neighbours of each point. With several jobs, the
/// neighbours of all core points are kept, and joined at the end.
///
/// Points must be finite, and `min_pts` positive.
template <int DIM, typename T>
class LiteralDensityClustering {
public:
    using Point = KDPoint<DIM, T>;
    using Clusters = std::vector<std::vector<std::size_t>>;
    using Boxes = std::vector<std::vector<T>>;

    /// The same as those of `kelvora::DensityClustering`, and not checked.
    LiteralDensityClustering(double eps, int min_pts);
    ~LiteralDensityClustering();

    LiteralDensityClustering(const LiteralDensityClustering&) = delete;
    LiteralDensityClustering& operator=(const LiteralDensityClustering&) = delete;

    void generateClusters(const std::vector<Point>& points, Clusters& clusters, Boxes& boxes,
                          unsigned char n_jobs);

private:
    class Tree;
    class SeedStack;
    using Neighbours = std::vector<nanoflann::ResultItem<std::size_t, T>>;

    void runOneJob(Clusters& clusters, Boxes& boxes);
    std::vector<std::size_t> expandCluster(std::size_t seed, std::vector<T>& box);
    void pushUnvisited(const Neighbours& neighbours);
    void runManyJobs(Clusters& clusters, Boxes& boxes, unsigned char n_jobs);
    void keepNeighbours();
    std::vector<std::size_t> joinNeighbours() const;
    void reportSets(std::vector<std::size_t>& parent, Clusters& clusters, Boxes& boxes) const;

    T radius;
    std::size_t min_pts;
    std::unique_ptr<Tree> tree;
    std::vector<bool> visited;
    std::unique_ptr<SeedStack> seeds;
    Neighbours seed_list;
    Neighbours neighbour_list;
    std::vector<std::vector<std::size_t>> neighbour_lists;
    std::atomic<std::size_t> next_point;
};

extern template class LiteralDensityClustering<2, float>;
extern template class LiteralDensityClustering<2, double>;
extern template class LiteralDensityClustering<3, float>;
extern template class LiteralDensityClustering<3, double>;

}  // namespace kelvora::benchmarks
