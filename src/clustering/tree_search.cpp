// SPDX-License-Identifier: MIT
#include "clustering/tree_search.hpp"

#include <algorithm>

#include "clustering/lane_bits.hpp"
#include "clustering/set_report.hpp"

namespace kelvora {

namespace {

constexpr std::size_t kLeavesPerBlock = 32;

}  // namespace

template <int DIM, typename T>
void TreeSearch<DIM, T>::reset(T radius, std::size_t min_pts_) {
    squared_radius = radius * radius;
    min_pts = min_pts_;
    is_core.assign(tree.order.size(), 0);
    sets.reset(tree.order.size());
}

template <int DIM, typename T>
std::size_t TreeSearch<DIM, T>::blocks() const {
    return (tree.leaves() + kLeavesPerBlock - 1) / kLeavesPerBlock;
}

template <int DIM, typename T>
template <class OnPoint>
void TreeSearch<DIM, T>::forPointsOf(std::size_t block, OnPoint onPoint) const {
    const std::size_t end = std::min((block + 1) * kLeavesPerBlock, tree.leaves());
    for (std::size_t leaf = block * kLeavesPerBlock; leaf < end; ++leaf) {
        for (unsigned lane = 0; lane < Tree::kLanes; ++lane) {
            const std::uint32_t slot = Tree::slotAt(leaf, lane);
            if (tree.isFinite(slot)) {
                onPoint(slot, lane > 0 && tree.isFinite(slot - 1) &&
                                  tree.coordinatesAt(slot) == tree.coordinatesAt(slot - 1));
            }
        }
    }
}

template <int DIM, typename T>
void TreeSearch<DIM, T>::findCorePoints(std::size_t block) {
    Walk walk(tree, squared_radius);
    forPointsOf(block, [&](std::uint32_t slot, bool is_like_the_one_before) {
        if (is_like_the_one_before) {
            is_core[slot] = is_core[slot - 1];
            return;
        }
        std::size_t count = 0;  // including the point itself
        walk.neighboursOf(slot, [&](const LanesOfLeaf& near) {
            count += near.count;
            return count <= min_pts;
        });
        is_core[slot] = count > min_pts ? 1 : 0;
    });
}

template <int DIM, typename T>
void TreeSearch<DIM, T>::joinNeighbours(std::size_t block) {
    Walk walk(tree, squared_radius);
    forPointsOf(block, [&](std::uint32_t slot, bool is_like_the_one_before) {
        if (is_core[slot] == 0) {
            return;
        }
        if (is_like_the_one_before) {
            sets.join(slot, slot - 1);
            return;
        }
        walk.neighboursOf(slot, [&](const LanesOfLeaf& near) {
            forEachLane(near.lanes,
                        [&](unsigned lane) { sets.join(slot, Tree::slotAt(near.leaf, lane)); });
            return true;
        });
    });
}

template <int DIM, typename T>
void TreeSearch<DIM, T>::writeSets(std::vector<std::uint32_t>& set_of) {
    writeJoinedSets(sets, tree.order, set_of);
}

template class TreeSearch<2, float>;
template class TreeSearch<2, double>;
template class TreeSearch<3, float>;
template class TreeSearch<3, double>;

}  // namespace kelvora
