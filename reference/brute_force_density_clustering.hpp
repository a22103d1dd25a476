// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora::reference {

/// Which points are neighbours, from comparing each pair of them in the arithmetic of their type.
template <int DIM, typename T>
class Neighbourhoods {
public:
    Neighbourhoods(const std::vector<KDPoint<DIM, T>>& points, double eps);

    /// The points closer than the radius, itself included, ascending.
    const std::vector<std::size_t>& of(std::size_t point) const { return neighbours[point]; }
    std::size_t points() const { return neighbours.size(); }

private:
    std::vector<std::vector<std::size_t>> neighbours;
};

/// The clusters of `kelvora::DensityClustering` by definition: the connected parts of a graph.
/// Members ascend, and clusters come in the order of their first core points with one job, and of
/// their first members with several. Square time.
///
/// `DensityClustering` of this directory follows the steps of the rules instead, and so gives the
/// order of members too, in large sets as well. But it shares nanoflann and those steps with the
/// library. This model shares neither, and would show a mistake in both.
template <int DIM, typename T>
class BruteForceDensityClustering {
public:
    using Point = KDPoint<DIM, T>;
    using Clusters = std::vector<std::vector<std::size_t>>;
    using Boxes = std::vector<std::vector<T>>;

    /// Without a positive number of points, there are no clusters.
    BruteForceDensityClustering(double eps_, int min_pts_) : eps(eps_), min_pts(min_pts_) {}

    void generateClusters(const std::vector<Point>& points, Clusters& clusters, Boxes& boxes,
                          unsigned char n_jobs) const;

private:
    void runOneJob(const std::vector<Point>& points, Clusters& clusters, Boxes& boxes) const;
    void runManyJobs(const std::vector<Point>& points, Clusters& clusters, Boxes& boxes) const;

    double eps;
    int min_pts;
};

extern template class Neighbourhoods<2, float>;
extern template class Neighbourhoods<2, double>;
extern template class Neighbourhoods<3, float>;
extern template class Neighbourhoods<3, double>;
extern template class BruteForceDensityClustering<2, float>;
extern template class BruteForceDensityClustering<2, double>;
extern template class BruteForceDensityClustering<3, float>;
extern template class BruteForceDensityClustering<3, double>;

}  // namespace kelvora::reference
