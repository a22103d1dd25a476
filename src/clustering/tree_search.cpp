// SPDX-License-Identifier: MIT
#include "clustering/tree_search.hpp"

#include <algorithm>
#include <cmath>

namespace kelvora {

namespace {

constexpr std::size_t kPointsPerBlock = 256;

}  // namespace

template <int DIM, typename T>
void TreeSearch<DIM, T>::reset(const std::vector<Point>& points, T radius, std::size_t min_pts_) {
    squared_radius = radius * radius;
    min_pts = min_pts_;
    state.resize(tree.size());
    for (std::size_t position = 0; position < tree.size(); ++position) {
        const auto& coordinates = points[tree.order[position]].coordinates;
        const bool is_finite = std::all_of(coordinates.begin(), coordinates.end(),
                                           [](T value) { return std::isfinite(value); });
        state[position] = is_finite ? kOrdinary : kNotFinite;
    }
    sets.reset(tree.size());
}

template <int DIM, typename T>
std::size_t TreeSearch<DIM, T>::blocks() const {
    return (tree.size() + kPointsPerBlock - 1) / kPointsPerBlock;
}

/// Points at the same place have the same neighbours, and are next to each other more often than not.
template <int DIM, typename T>
bool TreeSearch<DIM, T>::isLikeTheOneBefore(std::size_t position) const {
    return position % kPointsPerBlock > 0 && state[position - 1] != kNotFinite &&
           tree.coordinatesAt(position) == tree.coordinatesAt(position - 1);
}

template <int DIM, typename T>
void TreeSearch<DIM, T>::findCorePoints(std::size_t block) {
    TreeWalk<DIM, T> walk(tree, squared_radius);
    const std::size_t begin = block * kPointsPerBlock;
    const std::size_t end = std::min(begin + kPointsPerBlock, tree.size());
    for (std::size_t position = begin; position < end; ++position) {
        if (state[position] == kNotFinite) {
            continue;
        }
        if (isLikeTheOneBefore(position)) {
            state[position] = state[position - 1];
        } else if (isCore(static_cast<std::uint32_t>(position), walk)) {
            state[position] = kCore;
        }
    }
}

/// Counts until there are enough; the point itself is among those counted.
template <int DIM, typename T>
bool TreeSearch<DIM, T>::isCore(std::uint32_t position, TreeWalk<DIM, T>& walk) const {
    const auto center = tree.coordinatesAt(position);
    std::size_t count = 0;
    walk.leavesAround(center, [&](std::uint32_t begin, std::uint32_t end) {
        for (std::uint32_t k = begin; k < end; ++k) {
            count += walk.isNear(center, k) ? 1 : 0;
        }
        return count <= min_pts;
    });
    return count > min_pts;
}

template <int DIM, typename T>
void TreeSearch<DIM, T>::joinNeighbours(std::size_t block) {
    TreeWalk<DIM, T> walk(tree, squared_radius);
    const std::size_t begin = block * kPointsPerBlock;
    const std::size_t end = std::min(begin + kPointsPerBlock, tree.size());
    for (std::size_t k = begin; k < end; ++k) {
        const auto position = static_cast<std::uint32_t>(k);
        if (state[position] != kCore) {
            continue;
        }
        if (isLikeTheOneBefore(position)) {
            sets.join(position, position - 1);
        } else {
            joinNeighboursOf(position, walk);
        }
    }
}

template <int DIM, typename T>
void TreeSearch<DIM, T>::joinNeighboursOf(std::uint32_t position, TreeWalk<DIM, T>& walk) {
    const auto center = tree.coordinatesAt(position);
    walk.leavesAround(center, [&](std::uint32_t begin, std::uint32_t end) {
        for (std::uint32_t k = begin; k < end; ++k) {
            if (walk.isNear(center, k)) {
                sets.join(position, k);
            }
        }
        return true;
    });
}

/// Only core points and their neighbours were joined: points that are alone are noise.
template <int DIM, typename T>
void TreeSearch<DIM, T>::writeSets(std::vector<std::uint32_t>& set_of) {
    std::fill(set_of.begin(), set_of.end(), kNoSet);
    for (std::size_t k = 0; k < tree.size(); ++k) {
        const std::uint32_t set = sets.find(static_cast<std::uint32_t>(k));
        if (set != k) {
            set_of[tree.order[k]] = set;
            set_of[tree.order[set]] = set;
        }
    }
}

template class TreeSearch<2, float>;
template class TreeSearch<2, double>;
template class TreeSearch<3, float>;
template class TreeSearch<3, double>;

}  // namespace kelvora
