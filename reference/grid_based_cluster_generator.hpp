// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"

namespace kelvora::reference {

/// The rules of `kelvora::GridBasedClusterGenerator` step by step: the polarity mode is two stored
/// functions, marked cells are addressed bit by bit, and clusters are found cell by cell with a
/// stack.
///
/// The first event of each model decides which polarity is ignored. In the library, it is the first
/// event of its type in the process.
class GridBasedClusterGenerator {
public:
    /// As in the library.
    GridBasedClusterGenerator(int sensor_width, int sensor_height, int cell_width, int cell_height,
                              int max_cluster_size, int min_cluster_size,
                              EventFilterType filter_type, bool count_pixel_once,
                              unsigned short activation_threshold);

    void processEvent(const Event2D* event);
    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& clusters);
    void reset();

    /// Events counted at each pixel, row by row, 255 for more than that.
    const std::vector<std::uint8_t>& getPixelCounts() const { return pixel_counts; }

private:
    struct Range {
        int min_row;
        int min_col;
        int rows_spanned;
        int cols_spanned;
    };

    std::size_t cellIndex(int row, int col) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(cell_cols) +
               static_cast<std::size_t>(col);
    }
    void installSeparateCounters();
    void installCommonCounters();
    void markBlock(int row, int col);
    Range takeComponent(int row, int col);
    void pushNeighbours(int row, int col, Range& range);
    void report(const Range& range, std::size_t timestamp,
                std::vector<ClusterGeometry>& clusters) const;

    int sensor_width;
    int sensor_height;
    int cell_width;
    int cell_height;
    int cell_rows;
    int cell_cols;
    int max_cluster_size;
    int min_cluster_size;
    EventFilterType filter_type;
    std::optional<std::uint8_t> rejected_polarity;
    bool count_pixel_once;
    std::uint16_t activation_threshold;
    std::vector<std::uint16_t> cell_counts;
    std::vector<std::uint8_t> pixel_counts;
    std::vector<bool> active_cells;
    std::vector<std::uint16_t> column_to_cell;
    std::vector<std::uint16_t> row_to_cell;
    std::function<bool(int, int)> is_cell_active;
    std::function<void(int, int, bool)> add_to_cell;
    std::vector<std::pair<int, int>> stack;
};

}  // namespace kelvora::reference
