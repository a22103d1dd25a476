// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/concurrent_sets.hpp"
#include "clustering/flat_tree.hpp"
#include "clustering/parallel_search.hpp"
#include "clustering/tree_walk.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Finds neighbours with a tree and joins them as they are found, so that none are kept. For points
/// and radii that a grid cannot serve.
template <int DIM, typename T>
class TreeSearch : public ParallelSearch {
public:
    using Point = KDPoint<DIM, T>;

    /// Takes in `points`, which `tree` holds.
    void reset(const std::vector<Point>& points, T radius, std::size_t min_pts);

    std::size_t blocks() const override;
    void findCorePoints(std::size_t block) override;
    void joinNeighbours(std::size_t block) override;
    void writeSets(std::vector<std::uint32_t>& set_of) override;

    /// Copied from an index of the points before `reset`.
    FlatTree<DIM, T> tree;

private:
    enum PointState : std::uint8_t { kOrdinary, kCore, kNotFinite };

    bool isCore(std::uint32_t position, TreeWalk<DIM, T>& walk) const;
    void joinNeighboursOf(std::uint32_t position, TreeWalk<DIM, T>& walk);
    bool isLikeTheOneBefore(std::size_t position) const;

    T squared_radius;
    std::size_t min_pts;
    // By position in the tree.
    std::vector<std::uint8_t> state;
    ConcurrentSets sets;
};

extern template class TreeSearch<2, float>;
extern template class TreeSearch<2, double>;
extern template class TreeSearch<3, float>;
extern template class TreeSearch<3, double>;

}  // namespace kelvora
