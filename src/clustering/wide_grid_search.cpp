// SPDX-License-Identifier: MIT
#include "clustering/wide_grid_search.hpp"

#include <algorithm>
#include <cstring>

#include "clustering/set_report.hpp"

namespace kelvora {

namespace {

constexpr std::size_t kCellsPerBlock = 64;

}  // namespace

template <int DIM, typename T>
void WideGridSearch<DIM, T>::reset(T radius, std::size_t min_pts_) {
    squared_radius = radius * radius;
    min_pts = min_pts_;
    is_core.assign(cells.points() + Cells::kPadding, 0);
    cell_has_core.assign(cells.cells(), 0);
    sets.reset(cells.points() + Cells::kPadding);
}

template <int DIM, typename T>
std::size_t WideGridSearch<DIM, T>::blocks() const {
    return (cells.cells() + kCellsPerBlock - 1) / kCellsPerBlock;
}

template <int DIM, typename T>
CellRange WideGridSearch<DIM, T>::cellsOfBlock(std::size_t block) const {
    const std::size_t begin = block * kCellsPerBlock;
    return {begin, std::min(begin + kCellsPerBlock, cells.cells())};
}

template <int DIM, typename T>
void WideGridSearch<DIM, T>::findCorePoints(std::size_t block) {
    const CellRange range = cellsOfBlock(block);
    Cursors cursors(cells, kRowOffsets, range.begin);
    for (std::size_t cell = range.begin; cell < range.end; ++cell) {
        Around around;
        std::size_t candidates = 0;
        for (std::size_t row = 0; row < Rows::kCount; ++row) {
            around[row] = cells.pointsOf(cursors.cellsInReach(cell, row));
            candidates += around[row].end - around[row].begin;
        }
        if (candidates <= min_pts) {
            continue;
        }
        const CellRange points = cells.pointsOf(cell);
        for (std::size_t point = points.begin; point < points.end; ++point) {
            if (isCore(point, around)) {
                is_core[point] = 1;
                cell_has_core[cell] = 1;
            }
        }
    }
}

template <int DIM, typename T>
bool WideGridSearch<DIM, T>::isCore(std::size_t point, const Around& around) const {
    Integers near = {};  // count in each lane; includes the point itself
    compareAll(point, around, [&](std::size_t /*first*/, const Integers& is_near) {
        near -= is_near;  // is_near is -1 for true
    });
    std::size_t count = 0;
    for (std::size_t lane = 0; lane < kWidth; ++lane) {
        count += near[lane];
    }
    return count > min_pts;
}

/// Joins each point only with points before it, in the order of their cells. Points after it are
/// joined with it when it is their turn.
template <int DIM, typename T>
void WideGridSearch<DIM, T>::joinNeighbours(std::size_t block) {
    const CellRange range = cellsOfBlock(block);
    Cursors cursors(cells, kRowOffsets, range.begin);
    for (std::size_t cell = range.begin; cell < range.end; ++cell) {
        PointsBefore before;
        bool has_core = cell_has_core[cell] != 0;
        for (std::size_t row = 0; row < kRowsBefore; ++row) {
            const CellRange others = cursors.cellsInReach(cell, row);
            before[row] = cells.pointsOf(others);
            has_core = has_core || hasCore(others);
        }
        for (auto point = cells.begin[cell]; has_core && point < cells.begin[cell + 1]; ++point) {
            before[kRowsBefore - 1].end = point;
            joinWithNear(point, before);
        }
    }
}

template <int DIM, typename T>
bool WideGridSearch<DIM, T>::hasCore(CellRange range) const {
    unsigned found = 0;
    for (std::size_t cell = range.begin; cell < range.end; ++cell) {
        found |= cell_has_core[cell];
    }
    return found != 0;
}

/// Joins a point with near points in its own row and in the rows before, if either is a core point.
template <int DIM, typename T>
void WideGridSearch<DIM, T>::joinWithNear(std::uint32_t point, const PointsBefore& before) {
    std::uint32_t set = sets.find(point);
    const unsigned joins_all = is_core[point];
    compareAll(point, before, [&](std::size_t first, const Integers& is_near) {
        // Most are in the set already. This is checked without a branch for each.
        unsigned others = 0;
        for (unsigned lane = 0; lane < kWidth; ++lane) {
            const auto other = static_cast<std::uint32_t>(first + lane);
            const unsigned joins =
                (joins_all | is_core[other]) & (sets.isKnownIn(other, set) ? 0U : 1U);
            others |= joins << lane & static_cast<unsigned>(is_near[lane]);
        }
        for (; others != 0; others &= others - 1) {
            const auto lane = static_cast<unsigned>(__builtin_ctz(others));
            sets.join(point, static_cast<std::uint32_t>(first + lane));
            set = sets.find(point);
        }
    });
}

/// Returns which of `kWidth` consecutive points are near: all bits are set if so, else none.
/// Squares are summed as in `squaredDistance`.
template <int DIM, typename T>
typename WideGridSearch<DIM, T>::Integers WideGridSearch<DIM, T>::compare(
    const std::array<T, DIM>& center, std::size_t first) const {
    Values sums = {};
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        Values values;
        std::memcpy(&values, cells.coordinates[axis].data() + first, sizeof(values));
        const Values differences = center[axis] - values;
        sums += differences * differences;
    }
    return reinterpret_cast<Integers>(sums < squared_radius);
}

/// Calls `onVector(first, is_near)` for the points of some rows, `kWidth` at a time. The last
/// vector of a row may include points after the row. They are not near, or are NaN, or belong to
/// the next row, which then continues after them.
template <int DIM, typename T>
template <class Ranges, class OnVector>
void WideGridSearch<DIM, T>::compareAll(std::size_t point, const Ranges& rows,
                                        OnVector onVector) const {
    const auto center = cells.coordinatesOf(point);
    std::size_t next = 0;
    for (const CellRange& row : rows) {
        for (next = std::max(next, row.begin); next < row.end; next += kWidth) {
            onVector(next, compare(center, next));
        }
    }
}

template <int DIM, typename T>
void WideGridSearch<DIM, T>::writeSets(std::vector<std::uint32_t>& set_of) {
    writeJoinedSets(sets, cells.order, set_of);
}

template class WideGridSearch<2, float>;
template class WideGridSearch<2, double>;
template class WideGridSearch<3, float>;
template class WideGridSearch<3, double>;

}  // namespace kelvora
