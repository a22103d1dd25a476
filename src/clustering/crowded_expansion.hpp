// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/flat_tree.hpp"
#include "clustering/seed_stack.hpp"
#include "clustering/tree_parts.hpp"
#include "clustering/tree_walk.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Finds the same clusters as `OrderedExpansion`, with members in the same order, in points that
/// have very many neighbours each. Listing all neighbours of n points in a small area takes n^2
/// time. This takes about n log n, by two means:
///
/// - A search takes whole parts of the tree whose points are all neighbours, without looking at the
///   points. All events of a hot pixel, or of a small area, are one such part. Points at the same
///   position share their search.
/// - The neighbours of a point are not put on the stack. Only the one to visit next is; the others
///   are represented by one entry, their list. While the search goes on from the next one, it
///   visits nearly all of them, because their neighbours are mostly the same. The list is written
///   out only if some are left when the stack is back at its entry.
///
/// With few neighbours per point, `OrderedExpansion` is faster: see `isCrowded`.
template <int DIM, typename T>
class CrowdedExpansion {
public:
    using Point = KDPoint<DIM, T>;
    using Tree = FlatTree<DIM, T>;

    /// Most points that it can cluster.
    static constexpr std::size_t kMostPoints = std::size_t{1} << 28;

    /// \param tree_  The tree of the points. Build it before `run`.
    explicit CrowdedExpansion(const Tree& tree_) : tree(tree_) {}

    /// Appends the clusters of `points` and their boxes. The tree must hold these points.
    void run(const std::vector<Point>& points, T radius, std::size_t min_pts,
             std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& boxes);

private:
    using Center = std::array<T, DIM>;
    using Walk = TreeWalk<DIM, T>;

    /// Some neighbours of a point: all points of a part, or some of a leaf.
    struct Found {
        std::uint32_t place;  ///< Node of the part, or leaf.
        std::uint16_t lanes;  ///< Lanes of the leaf; none for a whole part.
        std::uint32_t count;
    };

    void reset(T radius);
    void search(const Center& center, Walk& walk, bool unvisited_only);
    bool findNeighbours(std::uint32_t slot, Walk& walk, std::size_t min_pts);
    void visit(std::uint32_t slot, std::vector<std::size_t>& members);
    void expand(std::uint32_t seed, Walk& walk, std::size_t min_pts,
                std::vector<std::size_t>& members);
    std::size_t unvisitedFound() const;
    std::uint32_t nextToVisit(std::size_t n) const;
    std::uint32_t firstUnvisited(const Found& some, std::size_t skip) const;
    std::uint32_t firstUnvisitedOfPart(std::uint32_t node, std::size_t skip) const;
    std::uint32_t firstUnvisitedOfLeaf(std::uint32_t leaf, unsigned lanes, std::size_t skip) const;
    void pushRest(std::uint32_t slot, bool is_seed, Walk& walk);
    void listFound();
    void listPart(std::uint32_t node);
    void listLanes(std::uint32_t leaf, unsigned lanes);

    const Tree& tree;
    TreeParts<DIM, T> parts;
    T within;  ///< Square of a little less than the radius: parts within are found whole.

    std::vector<std::uint32_t> slot_of;  ///< Slot of each of the caller's points.
    typename Tree::SlotSet unvisited;
    typename Tree::SlotSet may_be_core;  ///< Without the points that are known not to be core.
    /// When each slot was visited, counted in visits; `kNever` before that.
    std::vector<std::uint32_t> visited_at;
    std::uint32_t visits = 0;

    // The last search.
    std::vector<Found> found;  ///< In the order of the walk.
    Center center_found;
    bool is_complete = false;  ///< Whether `found` holds all neighbours of `center_found`.
    std::size_t neighbour_count = 0;

    SeedStack stack;  ///< Slots to visit; entries from `tree.slots()` on are lists, see `expand`.
    std::vector<std::uint32_t> listed;  ///< A list that is written out.
};

extern template class CrowdedExpansion<2, float>;
extern template class CrowdedExpansion<2, double>;
extern template class CrowdedExpansion<3, float>;
extern template class CrowdedExpansion<3, double>;

}  // namespace kelvora
