// SPDX-License-Identifier: MIT
#include "clustering/grid_search.hpp"

#include <algorithm>
#include <cstdlib>
#include <type_traits>

#include "clustering/squared_distance.hpp"

namespace kelvora {

namespace {

constexpr std::size_t kCellsPerBlock = 128;
/// Points to compare before checking whether there are enough neighbours.
constexpr std::size_t kBatch = 64;
/// With more pairs of points in two cells, computing the box around one cell saves time.
constexpr std::size_t kManyPairs = 256;

}  // namespace

template <int DIM, typename T>
GridSearch<DIM, T>::GridSearch(const CellList<DIM, T>& cells_) : cells(cells_) {
    const auto rank = [](const typename Rows::Offset& offset) {
        const bool is_behind = offset[1] > 0 || (offset[1] == 0 && offset[0] > 0);
        return (is_behind ? 3 * kReach : 0) + std::abs(offset[0]) + std::abs(offset[1]);
    };
    std::size_t placed = 0;
    for (int next = 0; placed < Rows::kCount; ++next) {
        for (const auto& offset : Rows::offsets()) {
            if (rank(offset) == next) {
                near_to_far[placed++] = offset;
            }
        }
    }
}

template <int DIM, typename T>
void GridSearch<DIM, T>::reset(T radius, std::size_t min_pts_) {
    squared_radius = radius * radius;
    min_pts = min_pts_;
    state.assign(cells.points(), kOrdinary);
    cell_has_core.assign(cells.cells(), 0);
    sets.reset(cells.points());
}

template <int DIM, typename T>
std::size_t GridSearch<DIM, T>::blocks() const {
    return (cells.cells() + kCellsPerBlock - 1) / kCellsPerBlock;
}

template <int DIM, typename T>
typename GridSearch<DIM, T>::Range GridSearch<DIM, T>::cellsOfBlock(std::size_t block) const {
    const std::size_t begin = block * kCellsPerBlock;
    return {begin, std::min(begin + kCellsPerBlock, cells.cells())};
}

template <int DIM, typename T>
void GridSearch<DIM, T>::findCorePoints(std::size_t block) {
    const Range range = cellsOfBlock(block);
    Cursors cursors(cells, near_to_far, range.begin);
    for (std::size_t cell = range.begin; cell < range.end; ++cell) {
        const Range points = cells.pointsOf(cell);
        if (points.end - points.begin > min_pts) {
            std::fill(state.data() + points.begin, state.data() + points.end, kCore);
            cell_has_core[cell] = 1;
            continue;
        }
        std::array<Range, Rows::kCount> around;
        std::size_t candidates = 0;
        for (std::size_t row = 0; row < Rows::kCount; ++row) {
            around[row] = cells.pointsOf(cursors.cellsInReach(cell, row));
            candidates += around[row].end - around[row].begin;
        }
        if (candidates > min_pts && markCorePoints(points, around)) {
            cell_has_core[cell] = 1;
        }
    }
}

template <int DIM, typename T>
bool GridSearch<DIM, T>::markCorePoints(Range points,
                                        const std::array<Range, Rows::kCount>& around) {
    bool found = false;
    for (std::size_t point = points.begin; point < points.end; ++point) {
        if (isCore(point, around)) {
            state[point] = kCore;
            found = true;
        }
    }
    return found;
}

/// Counts until there are enough neighbours. The point itself is counted too.
template <int DIM, typename T>
bool GridSearch<DIM, T>::isCore(std::size_t point,
                                const std::array<Range, Rows::kCount>& around) const {
    const auto center = cells.coordinatesOf(point);
    std::size_t count = 0;
    for (const Range& range : around) {
        for (std::size_t begin = range.begin; begin < range.end; begin += kBatch) {
            count += countNear(center, {begin, std::min(begin + kBatch, range.end)});
            if (count > min_pts) {
                return true;
            }
        }
    }
    return false;
}

template <int DIM, typename T>
std::size_t GridSearch<DIM, T>::countNear(const std::array<T, DIM>& center, Range points) const {
    // As wide as the coordinates, so that the compiler can count several at a time.
    std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t> count = 0;
    for (std::size_t k = points.begin; k < points.end; ++k) {
        count += squaredDistance<DIM>(center, cells.coordinatesOf(k)) < squared_radius ? 1U : 0U;
    }
    return count;
}

template <int DIM, typename T>
bool GridSearch<DIM, T>::isNearAny(std::size_t point, Range points) const {
    const auto center = cells.coordinatesOf(point);
    for (std::size_t begin = points.begin; begin < points.end; begin += kBatch) {
        if (countNear(center, {begin, std::min(begin + kBatch, points.end)}) > 0) {
            return true;
        }
    }
    return false;
}

template <int DIM, typename T>
bool GridSearch<DIM, T>::isNearCorePoint(std::size_t point, Range points) const {
    const auto center = cells.coordinatesOf(point);
    for (std::size_t k = points.begin; k < points.end; ++k) {
        if (state[k] == kCore &&
            squaredDistance<DIM>(center, cells.coordinatesOf(k)) < squared_radius) {
            return true;
        }
    }
    return false;
}

/// Whether any of `points` is close to any of `others`, and one of the two is a core point.
template <int DIM, typename T>
bool GridSearch<DIM, T>::areLinked(Range points, Range others) const {
    if ((points.end - points.begin) * (others.end - others.begin) > kManyPairs) {
        return areLinkedLargeCells(points, others);
    }
    for (std::size_t point = points.begin; point < points.end; ++point) {
        if (state[point] == kCore ? isNearAny(point, others) : isNearCorePoint(point, others)) {
            return true;
        }
    }
    return false;
}

/// The same, but compares only points close to the box around the others.
template <int DIM, typename T>
bool GridSearch<DIM, T>::areLinkedLargeCells(Range points, Range others) const {
    std::array<T, DIM> low = cells.coordinatesOf(others.begin);
    std::array<T, DIM> high = low;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const T* const values = cells.coordinates[axis].data();
        for (std::size_t k = others.begin; k < others.end; ++k) {
            low[axis] = std::min(low[axis], values[k]);
            high[axis] = std::max(high[axis], values[k]);
        }
    }
    for (std::size_t point = points.begin; point < points.end; ++point) {
        const auto center = cells.coordinatesOf(point);
        std::array<T, DIM> closest;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            closest[axis] = std::min(std::max(center[axis], low[axis]), high[axis]);
        }
        // Rounding keeps the order of differences, squares and sums, so no point in
        // the box is closer.
        if (squaredDistance<DIM>(center, closest) < squared_radius &&
            (state[point] == kCore ? isNearAny(point, others) : isNearCorePoint(point, others))) {
            return true;
        }
    }
    return false;
}

template <int DIM, typename T>
void GridSearch<DIM, T>::joinNeighbours(std::size_t block) {
    const Range range = cellsOfBlock(block);
    Cursors cursors(cells, near_to_far, range.begin);
    for (std::size_t cell = range.begin; cell < range.end; ++cell) {
        if (cell_has_core[cell] == 0) {
            for (std::size_t row = 0; row < Rows::kCount; ++row) {
                joinBorderPoints(cell, cursors.cellsInReach(cell, row));
            }
            continue;
        }
        // Join only with cells before this one, near ones first. Those cells are mostly joined
        // already, so that most farther cells are in the set of this one by then.
        for (std::size_t row = 0; row < kRowsBefore; ++row) {
            const Range others = cursors.cellsInReach(cell, row);
            for (std::size_t other = std::min(others.end, cell); other-- > others.begin;) {
                joinCells(cell, other);
            }
        }
    }
}

/// Joins all points of two cells if a core point of one is close to a point of the other.
template <int DIM, typename T>
void GridSearch<DIM, T>::joinCells(std::size_t cell, std::size_t other) {
    if (cell_has_core[other] == 0) {
        return;
    }
    const std::uint32_t a = cells.begin[cell];
    const std::uint32_t b = cells.begin[other];
    if (sets.find(a) != sets.find(b) && areLinked(cells.pointsOf(cell), cells.pointsOf(other))) {
        sets.join(a, b);
    }
}

/// Joins each point of a cell without core points with other cells that have a close core point.
template <int DIM, typename T>
void GridSearch<DIM, T>::joinBorderPoints(std::size_t cell, Range others) {
    for (std::size_t other = others.begin; other < others.end; ++other) {
        if (cell_has_core[other] == 0) {
            continue;
        }
        for (std::uint32_t point = cells.begin[cell]; point < cells.begin[cell + 1]; ++point) {
            if (sets.find(point) != sets.find(cells.begin[other]) &&
                isNearCorePoint(point, cells.pointsOf(other))) {
                sets.join(point, cells.begin[other]);
                state[point] = kBorder;
            }
        }
    }
}

template <int DIM, typename T>
void GridSearch<DIM, T>::writeSets(std::vector<std::uint32_t>& set_of) {
    std::fill(set_of.begin(), set_of.end(), kNoSet);
    for (std::size_t cell = 0; cell < cells.cells(); ++cell) {
        const Range points = cells.pointsOf(cell);
        const std::uint32_t cell_set = sets.find(cells.begin[cell]);
        for (std::size_t k = points.begin; k < points.end; ++k) {
            if (cell_has_core[cell] != 0) {
                set_of[cells.order[k]] = cell_set;
            } else if (state[k] == kBorder) {
                set_of[cells.order[k]] = sets.find(static_cast<std::uint32_t>(k));
            }
        }
    }
}

template class GridSearch<2, float>;
template class GridSearch<2, double>;
template class GridSearch<3, float>;
template class GridSearch<3, double>;

}  // namespace kelvora
