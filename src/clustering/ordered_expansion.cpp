// SPDX-License-Identifier: MIT
#include "clustering/ordered_expansion.hpp"

#include "clustering/lane_bits.hpp"
#include "clustering/point_box.hpp"

namespace kelvora {

template <int DIM, typename T>
void OrderedExpansion<DIM, T>::run(const std::vector<Point>& points, T radius, std::size_t min_pts,
                                   std::vector<std::vector<std::size_t>>& clusters,
                                   std::vector<std::vector<T>>& boxes) {
    reset();
    Walk walk(tree, radius * radius);
    for (const std::uint32_t slot : slot_of) {
        // A point that is not core stays unvisited: it may become a border point
        // of a later cluster.
        if (slot != Tree::kNoSlot && Tree::contains(unvisited, slot) &&
            findNeighbours(slot, walk, min_pts)) {
            std::vector<std::size_t>& members = clusters.emplace_back();
            members.reserve(neighbour_count);
            expand(slot, walk, min_pts, members);
            boxes.push_back(boxOf(points, members));
        }
    }
}

template <int DIM, typename T>
void OrderedExpansion<DIM, T>::reset() {
    unvisited = tree.finite_lanes;
    may_be_core = tree.finite_lanes;
    tree.listSlots(slot_of);
    neighbours.resize(tree.leaves() + 1);
    behind.resize(tree.points);
    seeds.reset(tree.slots(), tree.points);
}

/// Returns whether a point is core. If so, lists its neighbours.
template <int DIM, typename T>
bool OrderedExpansion<DIM, T>::findNeighbours(std::uint32_t slot, Walk& walk, std::size_t min_pts) {
    if (!Tree::contains(may_be_core, slot)) {
        return false;
    }
    leaf_count = 0;
    neighbour_count = 0;
    walk.neighboursOf(slot, [this](const LanesOfLeaf& near) {
        neighbours[leaf_count] = near;
        leaf_count += near.count > 0 ? 1 : 0;
        neighbour_count += near.count;
        return true;
    });
    if (neighbour_count < min_pts) {
        Tree::remove(may_be_core, slot);
        return false;
    }
    return true;
}

/// Collects the cluster of a core point. Its neighbours are already listed.
template <int DIM, typename T>
void OrderedExpansion<DIM, T>::expand(std::uint32_t seed, Walk& walk, std::size_t min_pts,
                                      std::vector<std::size_t>& members) {
    const auto visit = [&](std::uint32_t slot) {
        Tree::remove(unvisited, slot);
        members.push_back(tree.order[slot]);
    };
    visit(seed);
    pushUnvisited();
    while (!seeds.empty()) {
        const std::uint32_t slot = seeds.pop();
        visit(slot);
        if (findNeighbours(slot, walk, min_pts)) {
            partitionAndPushUnvisited();
        }
    }
}

/// Pushes the unvisited neighbours in the order of the walk.
template <int DIM, typename T>
void OrderedExpansion<DIM, T>::pushUnvisited() {
    for (std::size_t i = 0; i < leaf_count; ++i) {
        const LanesOfLeaf& near = neighbours[i];
        pushFilled(near.leaf, near.lanes & unvisited[near.leaf]);
    }
}

/// Pushes the unvisited neighbours in the order in which `std::partition` would put them first: it
/// replaces each visited neighbour in front by the last unvisited one from behind. This order
/// decides the order of the cluster's members.
template <int DIM, typename T>
void OrderedExpansion<DIM, T>::partitionAndPushUnvisited() {
    std::size_t in_front = countUnvisited();
    std::size_t middle = 0;
    while (middle < leaf_count && in_front >= neighbours[middle].count) {
        in_front -= neighbours[middle++].count;
    }
    next_behind = behind.size();
    for (std::size_t i = leaf_count; i-- > middle + 1;) {
        collectFromBehind(neighbours[i].leaf, neighbours[i].lanes);
    }
    unsigned middle_lanes = 0;
    if (middle < leaf_count) {
        const LanesOfLeaf& near = neighbours[middle];
        const unsigned lanes_behind = withoutLowest(near.lanes, in_front);
        collectFromBehind(near.leaf, lanes_behind);
        middle_lanes = near.lanes & ~lanes_behind;
    }
    next_behind = behind.size();
    for (std::size_t i = 0; i < middle; ++i) {
        pushFilled(neighbours[i].leaf, neighbours[i].lanes);
    }
    if (middle_lanes != 0) {
        pushFilled(neighbours[middle].leaf, middle_lanes);
    }
}

template <int DIM, typename T>
std::size_t OrderedExpansion<DIM, T>::countUnvisited() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < leaf_count; ++i) {
        const LanesOfLeaf& near = neighbours[i];
        count += countBits(near.lanes & unvisited[near.leaf]);
    }
    return count;
}

/// Collects the unvisited neighbours among `lanes`, from the last to the first.
template <int DIM, typename T>
void OrderedExpansion<DIM, T>::collectFromBehind(std::size_t leaf, unsigned lanes) {
    unsigned left = lanes & unvisited[leaf];
    while (left != 0) {
        const unsigned lane = highestBit(left);
        behind[--next_behind] = Tree::slotAt(leaf, lane);
        left ^= 1U << lane;
    }
}

/// Pushes the neighbours among `lanes`. Visited ones are replaced by neighbours from behind.
template <int DIM, typename T>
void OrderedExpansion<DIM, T>::pushFilled(std::size_t leaf, unsigned lanes) {
    const unsigned unvisited_lanes = unvisited[leaf];
    forEachLane(lanes, [&](unsigned lane) {
        const bool is_unvisited = (unvisited_lanes >> lane & 1U) != 0;
        seeds.push(is_unvisited ? Tree::slotAt(leaf, lane) : behind[--next_behind]);
    });
}

template class OrderedExpansion<2, float>;
template class OrderedExpansion<2, double>;
template class OrderedExpansion<3, float>;
template class OrderedExpansion<3, double>;

}  // namespace kelvora
