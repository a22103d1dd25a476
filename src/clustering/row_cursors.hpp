// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/cell_list.hpp"

namespace kelvora {

/// The rows of cells within reach of a cell.
///
/// \tparam REACH  Largest distance of a neighbour on each axis, in cells.
template <int DIM, int REACH>
struct CellRows {
    static constexpr std::size_t kWidth = 2 * REACH + 1;
    static constexpr std::size_t kCount = DIM == 2 ? kWidth : kWidth * kWidth;

    /// Distance of a row on the axes other than the first, in cells.
    using Offset = std::array<int, 2>;

    /// All rows, in the order of the list of cells.
    static constexpr std::array<Offset, kCount> offsets() {
        std::array<Offset, kCount> result{};
        std::size_t count = 0;
        for (int z = DIM == 3 ? -REACH : 0; z <= (DIM == 3 ? REACH : 0); ++z) {
            for (int y = -REACH; y <= REACH; ++y) {
                result[count++] = {y, z};
            }
        }
        return result;
    }
};

/// Walks through the list of cells in ascending order, and finds the cells within
/// reach in each row.
template <int DIM, typename T, int REACH>
class RowCursors {
public:
    using Rows = CellRows<DIM, REACH>;

    RowCursors(const CellList<DIM, T>& cells,
               const std::array<typename Rows::Offset, Rows::kCount>& offsets,
               std::size_t first_cell)
        : number(cells.number) {
        for (std::size_t row = 0; row < Rows::kCount; ++row) {
            // Negative distances wrap around, and wrap back when they are added.
            std::int64_t rows = offsets[row][0];
            if (DIM == 3) {
                rows += offsets[row][1] * static_cast<std::int64_t>(cells.cells_on_axis[1]);
            }
            distances[row] = static_cast<std::uint64_t>(
                rows * static_cast<std::int64_t>(cells.cells_on_axis[0]) - REACH);
            const std::uint64_t first = number[first_cell] + distances[row];
            cursor[row] = static_cast<std::size_t>(
                std::lower_bound(number.begin(), number.end(), first) - number.begin());
        }
    }

    CellRange cellsInReach(std::size_t cell, std::size_t row) {
        const std::uint64_t first = number[cell] + distances[row];
        std::size_t& begin = cursor[row];
        while (begin < number.size() && number[begin] < first) {
            ++begin;
        }
        std::size_t end = begin;
        while (end < number.size() && number[end] < first + Rows::kWidth) {
            ++end;
        }
        return {begin, end};
    }

private:
    const std::vector<std::uint64_t>& number;
    /// From a cell to the first one within reach, for each row.
    std::array<std::uint64_t, Rows::kCount> distances;
    std::array<std::size_t, Rows::kCount> cursor;
};

}  // namespace kelvora
