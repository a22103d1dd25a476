// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "support/grid_settings.hpp"

namespace kelvora::test {

/// Row and column of a cell.
using Cell = std::pair<int, int>;

/// The 4-connected components of some cells, ordered by their first cells.
///
/// Every cell starts with itself as label and takes over the smallest label around it, again and
/// again until nothing changes.
std::vector<std::set<Cell>> connectedComponents(const std::set<Cell>& cells);

/// What the grid generator should do, written with sets and maps of cells and no regard to speed.
class BruteForceGridModel {
public:
    explicit BruteForceGridModel(const GridSettings& settings_) : settings(settings_) {}

    void processEvent(const Event2D& event);
    void reset();
    std::vector<ClusterGeometry> generateClusters(std::size_t timestamp);

    /// Events counted at each pixel (x, y) that has any, 255 for more than that.
    const std::map<std::pair<int, int>, int>& pixelCounts() const { return pixel_counts; }

private:
    struct Tally {
        unsigned negative = 0;
        unsigned positive = 0;
    };

    bool isIgnored(int polarity) const;
    bool isActive(const Tally& tally) const;
    void mark(const Cell& cell);
    std::optional<ClusterGeometry> clusterAround(const std::set<Cell>& component,
                                                 std::size_t timestamp) const;

    GridSettings settings;
    std::map<std::pair<int, int>, int> pixel_counts;
    std::map<Cell, Tally> tallies;
    std::set<Cell> marked;
};

/// Says where two lists of clusters differ in any field or in their order, or nothing if they are
/// the same.
std::optional<std::string> firstDifference(const std::vector<ClusterGeometry>& actual,
                                           const std::vector<ClusterGeometry>& expected);

}  // namespace kelvora::test
