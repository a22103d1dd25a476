// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/cell_list.hpp"
#include "support/density_cases.hpp"
#include "support/density_models.hpp"
#include "support/points.hpp"

/// \file
/// A grid that searches all kinds of sets by itself, even unsuitable ones.

namespace kelvora::test {

/// Clusters in the order of their first members. Blocks are processed from last to first.
template <class Search>
std::vector<std::vector<std::size_t>> searchBlocks(Search& search, std::size_t points) {
    for (std::size_t block = search.blocks(); block-- > 0;) {
        search.findCorePoints(block);
    }
    for (std::size_t block = search.blocks(); block-- > 0;) {
        search.joinNeighbours(block);
    }
    std::vector<std::uint32_t> set_of(points);
    search.writeSets(set_of);
    std::vector<std::vector<std::size_t>> members(points);
    for (std::size_t i = 0; i < points; ++i) {
        if (set_of[i] != kNoSet) {
            members[set_of[i]].push_back(i);
        }
    }
    members.erase(
        std::remove_if(members.begin(), members.end(), [](const auto& set) { return set.empty(); }),
        members.end());
    std::sort(members.begin(), members.end());
    return members;
}

/// Compares the clusters found by a grid with the literal model. The grid is reused for all sets.
template <class Kind, template <int, typename> class Search>
void compareWithLiteralPass(int count, std::size_t most_points) {
    using T = typename Kind::T;
    CellList<Kind::kDim, T> cells;
    Search<Kind::kDim, T> search(cells);
    int with_clusters = 0;
    // Some kinds of sets have no cells.
    forRandomCases<Kind>(count, most_points, 0, [&](const auto& set) {
        const T radius = static_cast<T>(set.eps);
        if (!cells.findCells(set.points, radius, search.kCellsPerRadius, search.kReach)) {
            return false;
        }
        cells.collectPoints(set.points);
        search.reset(radius, static_cast<std::size_t>(set.min_pts));
        const auto found = searchBlocks(search, set.points.size());
        EXPECT_EQ(found, literalClusters<Kind>(set.points, set.eps, set.min_pts, 2).clusters);
        with_clusters += found.empty() ? 0 : 1;
        return !found.empty();
    });
    EXPECT_GT(with_clusters, count);
}

}  // namespace kelvora::test
