// SPDX-License-Identifier: MIT
#include "clustering/crowded_expansion.hpp"

#include <algorithm>
#include <limits>

#include "clustering/lane_bits.hpp"
#include "clustering/point_box.hpp"

namespace kelvora {

namespace {

constexpr std::uint32_t kNever = std::numeric_limits<std::uint32_t>::max();

/// The square of the largest distance at which all points are found, with any rounding in the
/// walk. Each level of the tree adds and subtracts one square, of at most the squared radius.
/// Without the full precision of the type, there is no such distance.
template <typename T>
T surelyFound(T squared_radius, std::size_t depth) {
    constexpr T kSmallest = std::numeric_limits<T>::min() * T{1 << 24};
    const T share = 1 - 4 * static_cast<T>(depth + 4) * std::numeric_limits<T>::epsilon();
    return squared_radius > kSmallest ? squared_radius * share : T{0};
}

}  // namespace

template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::run(const std::vector<Point>& points, T radius, std::size_t min_pts,
                                   std::vector<std::vector<std::size_t>>& clusters,
                                   std::vector<std::vector<T>>& boxes) {
    reset(radius);
    Walk walk(tree, radius * radius);
    for (const std::uint32_t slot : slot_of) {
        // A point that is not core stays unvisited: it may become a border point
        // of a later cluster.
        if (slot != Tree::kNoSlot && Tree::contains(unvisited, slot) &&
            findNeighbours(slot, walk, min_pts)) {
            std::vector<std::size_t>& members = clusters.emplace_back();
            expand(slot, walk, min_pts, members);
            boxes.push_back(boxOf(points, members));
        }
    }
}

template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::reset(T radius) {
    parts.reset(tree);
    within = surelyFound(radius * radius, tree.depth);
    tree.listSlots(slot_of);
    unvisited = tree.finite_lanes;
    may_be_core = tree.finite_lanes;
    visited_at.assign(tree.slots(), kNever);
    visits = 0;
    is_complete = false;
    // Slots and their lists: each point is a slot, and has at most one list.
    stack.reset(2 * tree.slots(), 2 * tree.points);
}

/// Finds the neighbours of a position, in the order of the walk.
///
/// \param unvisited_only  Leave out parts without unvisited points.
template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::search(const Center& center, Walk& walk, bool unvisited_only) {
    found.clear();
    center_found = center;
    is_complete = !unvisited_only;
    const auto takePart = [&](std::uint32_t node) {
        const auto& part = parts[node];
        if (part.points == 0 || (unvisited_only && part.unvisited == 0)) {
            return true;
        }
        const bool is_whole =
            tree.nodes[node].axis != Tree::kLeaf && parts.isWithin(node, center, within);
        if (is_whole) {
            found.push_back({node, 0, part.points});
        }
        return is_whole;
    };
    const auto takeLeaf = [&](const LanesOfLeaf& near) {
        if (near.count > 0) {
            found.push_back({near.leaf, near.lanes, near.count});
        }
        return true;
    };
    walk.visitAround(center, takePart, takeLeaf);
}

/// Returns whether a point is core. If so, its neighbours are found.
template <int DIM, typename T>
bool CrowdedExpansion<DIM, T>::findNeighbours(std::uint32_t slot, Walk& walk, std::size_t min_pts) {
    if (!Tree::contains(may_be_core, slot)) {
        return false;
    }
    const Center center = tree.coordinatesAt(slot);
    if (!is_complete || center != center_found) {
        search(center, walk, false);
        neighbour_count = 0;
        for (const Found& some : found) {
            neighbour_count += some.count;
        }
    }
    if (neighbour_count < min_pts) {
        Tree::remove(may_be_core, slot);
        return false;
    }
    return true;
}

template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::visit(std::uint32_t slot, std::vector<std::size_t>& members) {
    Tree::remove(unvisited, slot);
    parts.visit(Tree::leafOf(slot));
    visited_at[slot] = visits++;
    members.push_back(tree.order[slot]);
}

/// Collects the cluster of a core point. Entries of the stack from `first_list` on are lists: the
/// neighbours of a visited point that were unvisited then.
template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::expand(std::uint32_t seed, Walk& walk, std::size_t min_pts,
                                      std::vector<std::size_t>& members) {
    const auto first_list = static_cast<std::uint32_t>(tree.slots());
    visit(seed, members);
    stack.push(first_list + seed);
    while (!stack.empty()) {
        const std::uint32_t entry = stack.pop();
        if (entry >= first_list) {
            pushRest(entry - first_list, entry - first_list == seed, walk);
            continue;
        }
        visit(entry, members);
        const std::size_t left = findNeighbours(entry, walk, min_pts) ? unvisitedFound() : 0;
        if (left > 1) {
            stack.push(first_list + entry);
        }
        if (left > 0) {
            stack.push(nextToVisit(left));
        }
    }
}

template <int DIM, typename T>
std::size_t CrowdedExpansion<DIM, T>::unvisitedFound() const {
    std::size_t count = 0;
    for (const Found& some : found) {
        count += some.lanes != 0 ? countBits(some.lanes & unvisited[some.place])
                                 : parts[some.place].unvisited;
    }
    return count;
}

/// Returns the last one of a list that has not been written out. `std::partition` moves the `n`
/// unvisited neighbours to the front. The last of them is the n-th neighbour if this is unvisited.
/// Otherwise it is replaced by an unvisited one from behind, and as the last to be replaced, by the
/// first of those.
template <int DIM, typename T>
std::uint32_t CrowdedExpansion<DIM, T>::nextToVisit(std::size_t n) const {
    std::size_t skip = n - 1;
    for (const Found& some : found) {
        if (skip >= some.count) {
            skip -= some.count;
            continue;
        }
        const std::uint32_t slot = firstUnvisited(some, skip);
        if (slot != Tree::kNoSlot) {
            return slot;
        }
        skip = 0;
    }
    return Tree::kNoSlot;  // never: of n unvisited points, at most n - 1 are skipped
}

/// Returns the first unvisited neighbour after the first `skip` ones, in the order of the walk.
template <int DIM, typename T>
std::uint32_t CrowdedExpansion<DIM, T>::firstUnvisited(const Found& some, std::size_t skip) const {
    return some.lanes != 0 ? firstUnvisitedOfLeaf(some.place, some.lanes, skip)
                           : firstUnvisitedOfPart(some.place, skip);
}

template <int DIM, typename T>
std::uint32_t CrowdedExpansion<DIM, T>::firstUnvisitedOfPart(std::uint32_t node,
                                                             std::size_t skip) const {
    if (parts[node].unvisited == 0) {
        return Tree::kNoSlot;
    }
    if (tree.nodes[node].axis == Tree::kLeaf) {
        const std::uint32_t leaf = tree.nodes[node].other;
        return firstUnvisitedOfLeaf(leaf, tree.finite_lanes[leaf], skip);
    }
    const auto [near, far] = tree.childrenFrom(center_found, node);
    if (skip >= parts[near].points) {
        return firstUnvisitedOfPart(far, skip - parts[near].points);
    }
    const std::uint32_t slot = firstUnvisitedOfPart(near, skip);
    return slot != Tree::kNoSlot ? slot : firstUnvisitedOfPart(far, 0);
}

template <int DIM, typename T>
std::uint32_t CrowdedExpansion<DIM, T>::firstUnvisitedOfLeaf(std::uint32_t leaf, unsigned lanes,
                                                             std::size_t skip) const {
    const unsigned left = withoutLowest(lanes, skip) & unvisited[leaf];
    return left != 0 ? Tree::slotAt(leaf, lowestBit(left)) : Tree::kNoSlot;
}

/// Pushes the neighbours of a visited point that are still unvisited. They are in the order in
/// which `std::partition` would have put them when the point was visited; the neighbours of the first
/// point of a cluster are in the order of the walk. This order decides the order of the
/// cluster's members.
template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::pushRest(std::uint32_t slot, bool is_seed, Walk& walk) {
    const Center center = tree.coordinatesAt(slot);
    search(center, walk, true);
    if (unvisitedFound() == 0) {
        return;
    }
    search(center, walk, false);
    is_complete = false;  // the neighbours were not counted
    listFound();
    auto end = listed.end();
    if (!is_seed) {
        const std::uint32_t now = visited_at[slot];
        end = std::partition(listed.begin(), listed.end(), [this, now](std::uint32_t neighbour) {
            return visited_at[neighbour] > now;
        });
    }
    for (auto neighbour = listed.begin(); neighbour != end; ++neighbour) {
        if (Tree::contains(unvisited, *neighbour)) {
            stack.push(*neighbour);
        }
    }
}

template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::listFound() {
    listed.clear();
    for (const Found& some : found) {
        if (some.lanes != 0) {
            listLanes(some.place, some.lanes);
        } else {
            listPart(some.place);
        }
    }
}

template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::listPart(std::uint32_t node) {
    if (tree.nodes[node].axis == Tree::kLeaf) {
        const std::uint32_t leaf = tree.nodes[node].other;
        listLanes(leaf, tree.finite_lanes[leaf]);
        return;
    }
    const auto [near, far] = tree.childrenFrom(center_found, node);
    listPart(near);
    listPart(far);
}

template <int DIM, typename T>
void CrowdedExpansion<DIM, T>::listLanes(std::uint32_t leaf, unsigned lanes) {
    forEachLane(lanes, [&](unsigned lane) { listed.push_back(Tree::slotAt(leaf, lane)); });
}

template class CrowdedExpansion<2, float>;
template class CrowdedExpansion<2, double>;
template class CrowdedExpansion<3, float>;
template class CrowdedExpansion<3, double>;

}  // namespace kelvora
