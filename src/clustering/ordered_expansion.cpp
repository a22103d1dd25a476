// SPDX-License-Identifier: MIT
#include "clustering/ordered_expansion.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "clustering/point_box.hpp"

namespace kelvora {

namespace {

/// Minima and extents of some points, by position.
template <int DIM, typename T>
std::vector<T> boxOf(const FlatTree<DIM, T>& tree, const std::vector<std::uint32_t>& members) {
    std::vector<T> box(2 * DIM);
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const std::vector<T>& values = tree.coordinates[axis];
        T low = values[members[0]];
        T high = low;
        for (const std::uint32_t position : members) {
            low = std::min(low, values[position]);
            high = std::max(high, values[position]);
        }
        box[axis] = low;
        box[DIM + axis] = high;
    }
    maximaToExtents<DIM>(box);
    return box;
}

}  // namespace

template <int DIM, typename T>
void OrderedExpansion<DIM, T>::run(const std::vector<Point>& points, T radius, std::size_t min_pts,
                                   std::vector<std::vector<std::size_t>>& clusters,
                                   std::vector<std::vector<T>>& boxes) {
    reset(points);
    TreeWalk<DIM, T> walk(tree, radius * radius);
    for (const std::uint32_t position : position_of) {
        // A point that is not core stays unvisited: a later cluster may take it in as border point.
        if ((state[position] & kUnvisited) == 0 || !findNeighbours(position, walk, min_pts)) {
            continue;
        }
        expand(position, walk, min_pts);
        std::vector<std::size_t>& cluster = clusters.emplace_back(members.size());
        std::transform(members.begin(), members.end(), cluster.begin(),
                       [this](std::uint32_t member) { return tree.order[member]; });
        boxes.push_back(boxOf(tree, members));
    }
}

template <int DIM, typename T>
void OrderedExpansion<DIM, T>::reset(const std::vector<Point>& points) {
    const std::size_t n = tree.size();
    state.resize(n);
    position_of.resize(n);
    for (std::size_t position = 0; position < n; ++position) {
        const auto& coordinates = points[tree.order[position]].coordinates;
        const bool is_finite = std::all_of(coordinates.begin(), coordinates.end(),
                                           [](T value) { return std::isfinite(value); });
        state[position] = is_finite ? kUnvisited : kUnvisited | kSparse;
        position_of[tree.order[position]] = static_cast<std::uint32_t>(position);
    }
    neighbours.resize(n + 1);
    unvisited_rest.resize(n + 1);
    seeds.reset(n);
}

/// Returns whether a point is core; then its neighbours are listed.
template <int DIM, typename T>
bool OrderedExpansion<DIM, T>::findNeighbours(std::uint32_t position, TreeWalk<DIM, T>& walk,
                                              std::size_t min_pts) {
    if ((state[position] & kSparse) != 0) {
        return false;
    }
    const std::uint32_t* end = walk.neighboursOf(position, neighbours.data());
    neighbour_count = static_cast<std::size_t>(end - neighbours.data());
    if (neighbour_count < min_pts) {
        state[position] |= kSparse;
        return false;
    }
    return true;
}

/// Collects the cluster of a core point whose neighbours are listed.
template <int DIM, typename T>
void OrderedExpansion<DIM, T>::expand(std::uint32_t seed, TreeWalk<DIM, T>& walk,
                                      std::size_t min_pts) {
    members.assign(1, seed);
    state[seed] = 0;
    for (std::size_t k = 0; k < neighbour_count; ++k) {
        if ((state[neighbours[k]] & kUnvisited) != 0) {
            seeds.push(neighbours[k]);
        }
    }
    while (!seeds.empty()) {
        const std::uint32_t position = seeds.pop();
        members.push_back(position);
        state[position] &= static_cast<std::uint8_t>(~kUnvisited);
        if (findNeighbours(position, walk, min_pts)) {
            pushUnvisited();
        }
    }
}

/// Pushes the unvisited neighbours in the order in which `std::partition` would put them first: each
/// gap that a visited one leaves in front is filled with the last unvisited one from behind. Their
/// order decides that of the cluster's members. As much of them is visited as not, in no order:
/// without branches, this takes a third of the time.
template <int DIM, typename T>
void OrderedExpansion<DIM, T>::pushUnvisited() {
    std::size_t unvisited = 0;
    for (std::size_t k = 0; k < neighbour_count; ++k) {
        unvisited += state[neighbours[k]] & kUnvisited;
    }
    std::uint32_t* rest = unvisited_rest.data();
    for (std::size_t k = neighbour_count; k-- > unvisited;) {
        *rest = neighbours[k];
        rest += state[neighbours[k]] & kUnvisited;
    }
    rest = unvisited_rest.data();
    for (std::size_t k = 0; k < unvisited; ++k) {
        const std::size_t is_unvisited = state[neighbours[k]] & kUnvisited;
        seeds.push(is_unvisited != 0 ? neighbours[k] : *rest);
        rest += 1 - is_unvisited;
    }
}

template class OrderedExpansion<2, float>;
template class OrderedExpansion<2, double>;
template class OrderedExpansion<3, float>;
template class OrderedExpansion<3, double>;

}  // namespace kelvora
