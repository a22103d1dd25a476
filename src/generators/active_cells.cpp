// SPDX-License-Identifier: MIT
#include "generators/active_cells.hpp"

#include <algorithm>

namespace kelvora {

namespace {

/// The first set bit of a row at or after `col`, or `cols` if there is none.
std::size_t findSet(const std::uint64_t* row, std::size_t col, std::size_t cols,
                    std::uint64_t inverted) {
    while (col < cols) {
        const std::uint64_t rest = (row[col / 64] ^ inverted) >> (col % 64);
        if (rest != 0) {
            return std::min(cols, col + static_cast<std::size_t>(__builtin_ctzll(rest)));
        }
        col = (col / 64 + 1) * 64;
    }
    return cols;
}

std::size_t findActive(const std::uint64_t* row, std::size_t col, std::size_t cols) {
    return findSet(row, col, cols, 0);
}

std::size_t findInactive(const std::uint64_t* row, std::size_t col, std::size_t cols) {
    return findSet(row, col, cols, ~std::uint64_t{0});
}

}  // namespace

ActiveCells::ActiveCells(int rows_, int cols_)
    : rows(static_cast<std::size_t>(rows_)),
      cols(static_cast<std::size_t>(cols_)),
      words_per_row(cols / kBits + 1),
      words((rows + 1) * words_per_row, 0) {}

void ActiveCells::takeRegions(std::vector<CellRegion>& regions) {
    runs.clear();
    std::size_t above = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t row_begin = runs.size();
        findRuns(row);
        joinRuns(above, row_begin);
        above = row_begin;
    }
    collectRegions(regions);
    std::fill(words.begin(), words.end(), 0);
}

void ActiveCells::findRuns(std::size_t row) {
    const std::uint64_t* const bits = &words[row * words_per_row];
    std::size_t begin = findActive(bits, 0, cols);
    while (begin < cols) {
        const std::size_t end = findInactive(bits, begin, cols);
        runs.push_back({row, begin, end, runs.size()});
        begin = findActive(bits, end, cols);
    }
}

/// Joins the runs from `row_begin` on with those of the row above, [above, row_begin), that they
/// share a column with.
void ActiveCells::joinRuns(std::size_t above, std::size_t row_begin) {
    std::size_t upper = above;
    for (std::size_t lower = row_begin; lower < runs.size(); ++lower) {
        while (upper < row_begin && runs[upper].end <= runs[lower].begin) {
            ++upper;
        }
        for (std::size_t i = upper; i < row_begin && runs[i].begin < runs[lower].end; ++i) {
            const std::size_t first = findRoot(i);
            const std::size_t second = findRoot(lower);
            // The earlier run becomes the root: a region's root is then the run that holds its
            // first cell.
            runs[std::max(first, second)].parent = std::min(first, second);
        }
    }
}

std::size_t ActiveCells::findRoot(std::size_t run) {
    while (runs[run].parent != run) {
        runs[run].parent = runs[runs[run].parent].parent;
        run = runs[run].parent;
    }
    return run;
}

void ActiveCells::collectRegions(std::vector<CellRegion>& regions) {
    regions.clear();
    for (std::size_t i = 0; i < runs.size(); ++i) {
        Run& run = runs[i];
        const auto row = static_cast<int>(run.row);
        const auto begin = static_cast<int>(run.begin);
        const auto end = static_cast<int>(run.end);
        if (run.parent == i) {
            run.parent = regions.size();
            regions.push_back({row, begin, 1, end - begin});
            continue;
        }
        // Parents come earlier, and already hold the index of their region.
        run.parent = runs[run.parent].parent;
        CellRegion& region = regions[run.parent];
        const int max_col = std::max(region.min_col + region.cols_spanned, end);
        region.min_col = std::min(region.min_col, begin);
        region.cols_spanned = max_col - region.min_col;
        region.rows_spanned = row - region.min_row + 1;
    }
}

}  // namespace kelvora
