// SPDX-License-Identifier: MIT
#include "reference/grid_based_cluster_generator.hpp"

#include <algorithm>
#include <limits>
#include <opencv2/core/types.hpp>
#include <stdexcept>
#include <unordered_map>

namespace kelvora::reference {

namespace {

std::uint8_t rejectedPolarityOf(EventFilterType filter_type) {
    static const std::unordered_map<EventFilterType, std::uint8_t> table = {
        {POLARITY_FREE, 2}, {POSITIVE_FREE, 1}, {NEGATIVE_FREE, 0}, {POLARITY_SEPARATE, 2}};
    return table.at(filter_type);
}

}  // namespace

GridBasedClusterGenerator::GridBasedClusterGenerator(int sensor_width_, int sensor_height_,
                                                     int cell_width_, int cell_height_,
                                                     int max_cluster_size_, int min_cluster_size_,
                                                     EventFilterType filter_type_,
                                                     bool count_pixel_once_,
                                                     unsigned short activation_threshold_)
    : sensor_width(sensor_width_),
      sensor_height(sensor_height_),
      cell_width(cell_width_),
      cell_height(cell_height_),
      cell_rows((sensor_height + cell_height - 1) / cell_height),
      cell_cols((sensor_width + cell_width - 1) / cell_width),
      max_cluster_size(max_cluster_size_),
      min_cluster_size(min_cluster_size_),
      filter_type(filter_type_),
      count_pixel_once(count_pixel_once_),
      activation_threshold(activation_threshold_) {
    if (cell_width < 1 || cell_height < 1 || cell_rows < 1 || cell_cols < 1) {
        throw std::invalid_argument("Invalid cell size or sensor size");
    }
    pixel_counts.resize(static_cast<std::size_t>(sensor_width) *
                        static_cast<std::size_t>(sensor_height));
    active_cells.resize(cellIndex(cell_rows, 0));
    if (filter_type == POLARITY_SEPARATE) {
        installSeparateCounters();
    } else {
        installCommonCounters();
    }
    for (int x = 0; x < sensor_width; ++x) {
        column_to_cell.push_back(static_cast<std::uint16_t>(x / cell_width));
    }
    for (int y = 0; y < sensor_height; ++y) {
        row_to_cell.push_back(static_cast<std::uint16_t>(y / cell_height));
    }
}

void GridBasedClusterGenerator::installSeparateCounters() {
    cell_counts.resize(2 * active_cells.size());
    add_to_cell = [this](int row, int col, bool positive) {
        ++cell_counts[2 * cellIndex(row, col) + (positive ? 1 : 0)];
    };
    is_cell_active = [this](int row, int col) {
        return cell_counts[2 * cellIndex(row, col)] >= activation_threshold &&
               cell_counts[2 * cellIndex(row, col) + 1] >= activation_threshold;
    };
}

void GridBasedClusterGenerator::installCommonCounters() {
    cell_counts.resize(active_cells.size());
    add_to_cell = [this](int row, int col, bool) { ++cell_counts[cellIndex(row, col)]; };
    is_cell_active = [this](int row, int col) {
        return cell_counts[cellIndex(row, col)] >= activation_threshold;
    };
}

void GridBasedClusterGenerator::processEvent(const Event2D* event) {
    if (!rejected_polarity) {
        rejected_polarity = rejectedPolarityOf(filter_type);
    }
    if (event->polarity == *rejected_polarity) {
        return;
    }
    const int row = row_to_cell[event->y];
    const int col = column_to_cell[event->x];
    const std::size_t pixel = event->y * static_cast<std::size_t>(sensor_width) + event->x;
    if (count_pixel_once && pixel_counts[pixel] != 0) {
        return;
    }
    if (pixel_counts[pixel] != std::numeric_limits<std::uint8_t>::max()) {
        ++pixel_counts[pixel];
    }
    add_to_cell(row, col, event->polarity != 0);
    if (is_cell_active(row, col)) {
        markBlock(row, col);
    }
}

void GridBasedClusterGenerator::markBlock(int row, int col) {
    for (int r = row; r <= row + 1; ++r) {
        for (int c = col; c <= col + 1; ++c) {
            if (r < cell_rows && c < cell_cols) {
                active_cells[cellIndex(r, c)] = true;
            }
        }
    }
}

void GridBasedClusterGenerator::generateClusters(std::size_t timestamp,
                                                 std::vector<ClusterGeometry>& clusters) {
    clusters.clear();
    for (int row = 0; row < cell_rows; ++row) {
        for (int col = 0; col < cell_cols; ++col) {
            if (active_cells[cellIndex(row, col)]) {
                report(takeComponent(row, col), timestamp, clusters);
            }
        }
    }
    reset();
}

GridBasedClusterGenerator::Range GridBasedClusterGenerator::takeComponent(int first_row,
                                                                          int first_col) {
    Range range = {first_row, first_col, 1, 1};
    stack.clear();
    stack.emplace_back(first_row, first_col);
    while (!stack.empty()) {
        const auto [row, col] = stack.back();
        stack.pop_back();
        if (active_cells[cellIndex(row, col)]) {
            active_cells[cellIndex(row, col)] = false;
            pushNeighbours(row, col, range);
        }
    }
    return range;
}

void GridBasedClusterGenerator::pushNeighbours(int row, int col, Range& range) {
    if (row > 0 && active_cells[cellIndex(row - 1, col)]) {
        if (row - 1 < range.min_row) {
            --range.min_row;
            ++range.rows_spanned;
        }
        stack.emplace_back(row - 1, col);
    }
    if (row < cell_rows - 1 && active_cells[cellIndex(row + 1, col)]) {
        if (range.rows_spanned + range.min_row < row + 2) {
            ++range.rows_spanned;
        }
        stack.emplace_back(row + 1, col);
    }
    if (col > 0 && active_cells[cellIndex(row, col - 1)]) {
        if (col - 1 < range.min_col) {
            --range.min_col;
            ++range.cols_spanned;
        }
        stack.emplace_back(row, col - 1);
    }
    if (col < cell_cols - 1 && active_cells[cellIndex(row, col + 1)]) {
        if (range.cols_spanned + range.min_col < col + 2) {
            ++range.cols_spanned;
        }
        stack.emplace_back(row, col + 1);
    }
}

void GridBasedClusterGenerator::report(const Range& range, std::size_t timestamp,
                                       std::vector<ClusterGeometry>& clusters) const {
    const cv::Rect box(range.min_col * cell_width, range.min_row * cell_height,
                       range.cols_spanned * cell_width, range.rows_spanned * cell_height);
    if (min_cluster_size <= box.width && min_cluster_size <= box.height &&
        box.width <= max_cluster_size && box.height <= max_cluster_size) {
        const cv::Rect clipped = box & cv::Rect(0, 0, sensor_width, sensor_height);
        clusters.emplace_back(static_cast<float>(clipped.x), static_cast<float>(clipped.y),
                              static_cast<float>(clipped.width), static_cast<float>(clipped.height),
                              timestamp);
    }
}

void GridBasedClusterGenerator::reset() {
    std::fill(pixel_counts.begin(), pixel_counts.end(), std::uint8_t{0});
    std::fill(cell_counts.begin(), cell_counts.end(), std::uint16_t{0});
}

}  // namespace kelvora::reference
