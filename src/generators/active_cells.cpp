// SPDX-License-Identifier: MIT
#include "generators/active_cells.hpp"

#include <algorithm>

namespace kelvora {

ActiveCells::ActiveCells(int rows_, int cols_)
    : rows(static_cast<std::size_t>(rows_)),
      cols(static_cast<std::size_t>(cols_)),
      words_per_row(cols / kBits + 1),
      words((rows + 1) * words_per_row, 0) {}

void ActiveCells::markBlock(std::size_t row, std::size_t col) noexcept {
    std::uint64_t* const upper = &words[row * words_per_row + col / kBits];
    std::uint64_t* const lower = upper + words_per_row;
    const std::uint64_t both = std::uint64_t{3} << (col % kBits);
    *upper |= both;
    *lower |= both;
    if (col % kBits == kBits - 1) {
        upper[1] |= 1;
        lower[1] |= 1;
    }
}

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

/// Appends the runs of a row.
///
/// Looks for the edges of runs, where a cell differs from the one before it, instead of single
/// cells: the first edge begins a run, the second ends it, and so on. The padding
/// ends the last run.
void ActiveCells::findRuns(std::size_t row) {
    const std::uint64_t* const bits = &words[row * words_per_row];
    const std::size_t last = words_per_row - 1;
    std::uint64_t before = 0;
    edges.clear();
    for (std::size_t i = 0; i < words_per_row; ++i) {
        const std::uint64_t word =
            i < last ? bits[i] : bits[i] & ((std::uint64_t{1} << (cols % kBits)) - 1);
        for (std::uint64_t rest = word ^ (word << 1 | before); rest != 0; rest &= rest - 1) {
            edges.push_back(static_cast<std::uint32_t>(i * kBits) +
                            static_cast<std::uint32_t>(__builtin_ctzll(rest)));
        }
        before = word >> (kBits - 1);
    }
    for (std::size_t i = 0; i < edges.size(); i += 2) {
        runs.push_back({static_cast<std::uint32_t>(row), edges[i], edges[i + 1],
                        static_cast<std::uint32_t>(runs.size())});
    }
}

/// Joins the runs from `row_begin` on with the runs of the row above, [above, row_begin), where
/// they share a column.
void ActiveCells::joinRuns(std::size_t above, std::size_t row_begin) {
    std::size_t upper = above;
    std::size_t lower = row_begin;
    const std::size_t end = runs.size();
    while (upper < row_begin && lower < end) {
        const Run& a = runs[upper];
        const Run& b = runs[lower];
        const bool upper_ends_first = a.end < b.end;
        if (a.begin < b.end && b.begin < a.end) {
            const std::uint32_t first = findRoot(static_cast<std::uint32_t>(upper));
            const std::uint32_t second = findRoot(static_cast<std::uint32_t>(lower));
            // The earlier run becomes the root, so that a region's root is the run
            // with its first cell.
            runs[std::max(first, second)].parent = std::min(first, second);
        }
        upper += upper_ends_first ? 1 : 0;
        lower += upper_ends_first ? 0 : 1;
    }
}

std::uint32_t ActiveCells::findRoot(std::uint32_t run) {
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
            run.parent = static_cast<std::uint32_t>(regions.size());
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
