// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/flat_tree.hpp"
#include "clustering/seed_stack.hpp"
#include "clustering/tree_walk.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// The density clustering with one job. Clusters grow point by point, in a defined order: it
/// follows from the walk through nanoflann's tree, and from how `std::partition` orders
/// a list of neighbours.
///
/// Neighbours and visited points are stored leaf by leaf, with one bit per point. This takes 40 to
/// 55 % of the time of searches in nanoflann's tree with lists of its results: see
/// benchmarks/README.md.
template <int DIM, typename T>
class OrderedExpansion {
public:
    using Point = KDPoint<DIM, T>;

    /// Appends the clusters of `points` and their boxes. `tree` must hold these points.
    void run(const std::vector<Point>& points, T radius, std::size_t min_pts,
             std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& boxes);

    /// The tree of the points. Build it before `run`.
    FlatTree<DIM, T> tree;

private:
    using Tree = FlatTree<DIM, T>;
    using Walk = TreeWalk<DIM, T>;

    void reset();
    bool findNeighbours(std::uint32_t slot, Walk& walk, std::size_t min_pts);
    void expand(std::uint32_t seed, Walk& walk, std::size_t min_pts,
                std::vector<std::size_t>& members);
    void pushUnvisited();
    void partitionAndPushUnvisited();
    std::size_t countUnvisited() const;
    void collectFromBehind(std::size_t leaf, unsigned lanes);
    void pushFilled(std::size_t leaf, unsigned lanes);

    typename Tree::SlotSet unvisited;
    typename Tree::SlotSet may_be_core;   ///< Without the points that are known not to be core.
    std::vector<std::uint32_t> slot_of;   ///< Slot of each of the caller's points.
    std::vector<LanesOfLeaf> neighbours;  ///< The first `leaf_count` are in use.
    std::size_t leaf_count = 0;
    std::size_t neighbour_count = 0;
    std::vector<std::uint32_t> behind;  ///< Unvisited neighbours that fill gaps in front.
    std::size_t next_behind = 0;
    SeedStack seeds;
};

extern template class OrderedExpansion<2, float>;
extern template class OrderedExpansion<2, double>;
extern template class OrderedExpansion<3, float>;
extern template class OrderedExpansion<3, double>;

}  // namespace kelvora
