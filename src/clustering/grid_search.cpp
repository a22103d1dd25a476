// SPDX-License-Identifier: MIT
#include "clustering/grid_search.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "clustering/radix_sort.hpp"
#include "clustering/squared_distance.hpp"

namespace kelvora {

namespace {

/// Shortens the cells, so that neither rounding of cell numbers nor that of squared distances takes
/// two points of a cell apart.
constexpr double kMargin = 0.999;
/// More cells on an axis than this would be numbered too coarsely for that margin.
constexpr double kMostCells = 2147483648.0;
constexpr std::size_t kCellsPerBlock = 128;
/// Points that are compared before looking whether they are enough.
constexpr std::size_t kBatch = 64;
/// Pairs of points in two cells that are worth a look at the box around one of them.
constexpr std::size_t kManyPairs = 256;

template <int DIM, typename T>
bool isFinite(const KDPoint<DIM, T>& point) {
    return std::all_of(point.coordinates.begin(), point.coordinates.end(),
                       [](T value) { return std::isfinite(value); });
}

unsigned bitsFor(double numbers) {
    return static_cast<unsigned>(std::ilogb(std::max(numbers, 1.0))) + 1;
}

/// Whether squares of that size are computed with the precision of the type.
template <typename T>
bool isOrdinarySquare(T square) {
    constexpr T kSmallest = std::numeric_limits<T>::min() * T{1 << 24};
    return square > kSmallest && square <= std::numeric_limits<T>::max();
}

/// The rows within reach of a cell, as offsets on the axes other than the first: that of the cell,
/// those before it from near to far, and those behind.
template <int DIM, int reach, std::size_t rows>
std::array<std::array<int, 2>, rows> rowOffsets() {
    std::array<std::array<int, 2>, rows> offsets;
    std::size_t count = 0;
    for (int z = DIM == 3 ? -reach : 0; z <= (DIM == 3 ? reach : 0); ++z) {
        for (int y = -reach; y <= reach; ++y) {
            offsets[count++] = {y, z};
        }
    }
    const auto rank = [](const std::array<int, 2>& offset) {
        const bool is_behind = offset[1] > 0 || (offset[1] == 0 && offset[0] > 0);
        return (is_behind ? 100 : 0) + std::abs(offset[0]) + std::abs(offset[1]);
    };
    std::sort(offsets.begin(), offsets.end(),
              [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
    return offsets;
}

}  // namespace

/// Where the cells lie. There are empty ones around them, so that rows do not run into each other.
template <int DIM, typename T>
struct GridSearch<DIM, T>::Extent {
    std::array<double, DIM> low;
    double cells_per_unit;
    std::array<std::uint64_t, DIM> cells;
    std::size_t finite_points;
    unsigned index_bits;
    unsigned cell_bits;
};

/// Follows the cells of a block through the list, and in each row those within reach.
template <int DIM, typename T>
class GridSearch<DIM, T>::RowCursors {
public:
    RowCursors(const GridSearch& grid_, std::size_t first_cell) : grid(grid_) {
        const auto& numbers = grid.cell_number;
        for (std::size_t row = 0; row < kRows; ++row) {
            const std::uint64_t first = numbers[first_cell] + grid.row_distance[row];
            cursor[row] = static_cast<std::size_t>(
                std::lower_bound(numbers.begin(), numbers.end(), first) - numbers.begin());
        }
    }

    /// Cells come in ascending order.
    Range cellsInReach(std::size_t cell, std::size_t row) {
        const auto& numbers = grid.cell_number;
        const std::uint64_t first = numbers[cell] + grid.row_distance[row];
        std::size_t& begin = cursor[row];
        while (begin < numbers.size() && numbers[begin] < first) {
            ++begin;
        }
        std::size_t end = begin;
        while (end < numbers.size() && numbers[end] < first + kRowWidth) {
            ++end;
        }
        return {begin, end};
    }

private:
    const GridSearch& grid;
    std::array<std::size_t, kRows> cursor;
};

template <int DIM, typename T>
bool GridSearch<DIM, T>::build(const std::vector<Point>& points, T radius, std::size_t min_pts_) {
    min_pts = min_pts_;
    squared_radius = radius * radius;
    Extent extent{};  // without finite points, no cells
    if (!measure(points, radius, extent)) {
        return false;
    }
    numberCells(points, extent);
    sortByCell(extent);
    collectPoints(points, extent);
    collectCells(extent);
    placeRows(extent);
    sets.reset(order.size());
    return true;
}

template <int DIM, typename T>
bool GridSearch<DIM, T>::measure(const std::vector<Point>& points, T radius, Extent& extent) const {
    if (!isOrdinarySquare(squared_radius)) {
        return false;
    }
    std::array<T, DIM> low;
    std::array<T, DIM> high;
    low.fill(std::numeric_limits<T>::max());
    high.fill(std::numeric_limits<T>::lowest());
    extent.finite_points = 0;
    for (const Point& point : points) {
        if (isFinite(point)) {
            ++extent.finite_points;
            for (std::size_t axis = 0; axis < DIM; ++axis) {
                low[axis] = std::min(low[axis], point.coordinates[axis]);
                high[axis] = std::max(high[axis], point.coordinates[axis]);
            }
        }
    }
    extent.cells_per_unit = std::sqrt(DIM) / (kMargin * std::abs(static_cast<double>(radius)));
    double all_cells = 1;
    for (std::size_t axis = 0; axis < DIM && extent.finite_points > 0; ++axis) {
        extent.low[axis] = static_cast<double>(low[axis]);
        const double length = static_cast<double>(high[axis]) - extent.low[axis];
        const double cells = length * extent.cells_per_unit;
        if (!(cells < kMostCells)) {
            return false;
        }
        extent.cells[axis] = static_cast<std::uint64_t>(cells) + kRowWidth;
        all_cells *= static_cast<double>(extent.cells[axis]);
    }
    extent.index_bits = bitsFor(static_cast<double>(points.size()));
    extent.cell_bits = bitsFor(all_cells);
    return extent.index_bits <= 32 && extent.index_bits + extent.cell_bits <= 64;
}

template <int DIM, typename T>
void GridSearch<DIM, T>::numberCells(const std::vector<Point>& points, const Extent& extent) {
    packed.clear();
    packed.reserve(extent.finite_points);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!isFinite(points[i])) {
            continue;
        }
        std::uint64_t number = 0;
        for (std::size_t axis = DIM; axis-- > 0;) {
            const auto distance =
                static_cast<double>(points[i].coordinates[axis]) - extent.low[axis];
            number = number * extent.cells[axis] + kReach +
                     static_cast<std::uint64_t>(
                         static_cast<std::int64_t>(distance * extent.cells_per_unit));
        }
        packed.push_back(number << extent.index_bits | i);
    }
}

template <int DIM, typename T>
void GridSearch<DIM, T>::sortByCell(const Extent& extent) {
    sortByBits(packed, packed_before, extent.index_bits, extent.cell_bits);
}

template <int DIM, typename T>
void GridSearch<DIM, T>::collectPoints(const std::vector<Point>& points, const Extent& extent) {
    const std::size_t n = packed.size();
    const std::uint64_t index_mask = (std::uint64_t{1} << extent.index_bits) - 1;
    order.resize(n);
    for (auto& axis : coordinates) {
        axis.resize(n);
    }
    for (std::size_t k = 0; k < n; ++k) {
        order[k] = static_cast<std::uint32_t>(packed[k] & index_mask);
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            coordinates[axis][k] = points[order[k]].coordinates[axis];
        }
    }
    state.assign(n, kOrdinary);
}

template <int DIM, typename T>
void GridSearch<DIM, T>::collectCells(const Extent& extent) {
    cell_number.clear();
    cell_begin.clear();
    std::uint64_t last = 0;  // no cell's number
    for (std::size_t k = 0; k < packed.size(); ++k) {
        const std::uint64_t number = packed[k] >> extent.index_bits;
        if (number != last) {
            cell_number.push_back(number);
            cell_begin.push_back(static_cast<std::uint32_t>(k));
            last = number;
        }
    }
    cell_begin.push_back(static_cast<std::uint32_t>(packed.size()));
    cell_has_core.assign(cell_number.size(), 0);
}

template <int DIM, typename T>
void GridSearch<DIM, T>::placeRows(const Extent& extent) {
    static const auto offsets = rowOffsets<DIM, kReach, kRows>();
    for (std::size_t row = 0; row < kRows; ++row) {
        // Negative ones wrap around, and back when they are added.
        std::int64_t rows = offsets[row][0];
        if (DIM == 3) {
            rows += offsets[row][1] * static_cast<std::int64_t>(extent.cells[1]);
        }
        row_distance[row] =
            static_cast<std::uint64_t>(rows * static_cast<std::int64_t>(extent.cells[0]) - kReach);
    }
}

template <int DIM, typename T>
std::size_t GridSearch<DIM, T>::blocks() const {
    return (cell_number.size() + kCellsPerBlock - 1) / kCellsPerBlock;
}

template <int DIM, typename T>
typename GridSearch<DIM, T>::Range GridSearch<DIM, T>::cellsOfBlock(std::size_t block) const {
    const std::size_t begin = block * kCellsPerBlock;
    return {begin, std::min(begin + kCellsPerBlock, cell_number.size())};
}

template <int DIM, typename T>
std::array<T, DIM> GridSearch<DIM, T>::coordinatesOf(std::size_t point) const {
    std::array<T, DIM> result;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        result[axis] = coordinates[axis][point];
    }
    return result;
}

template <int DIM, typename T>
void GridSearch<DIM, T>::findCorePoints(std::size_t block) {
    const Range cells = cellsOfBlock(block);
    RowCursors cursors(*this, cells.begin);
    for (std::size_t cell = cells.begin; cell < cells.end; ++cell) {
        const Range points = pointsOf(cell);
        if (points.end - points.begin > min_pts) {
            std::fill(state.data() + points.begin, state.data() + points.end, kCore);
            cell_has_core[cell] = 1;
            continue;
        }
        std::array<Range, kRows> around;
        std::size_t candidates = 0;
        for (std::size_t row = 0; row < kRows; ++row) {
            around[row] = pointsOf(cursors.cellsInReach(cell, row));
            candidates += around[row].end - around[row].begin;
        }
        if (candidates > min_pts && markCorePoints(points, around)) {
            cell_has_core[cell] = 1;
        }
    }
}

template <int DIM, typename T>
bool GridSearch<DIM, T>::markCorePoints(Range points, const std::array<Range, kRows>& around) {
    bool found = false;
    for (std::size_t point = points.begin; point < points.end; ++point) {
        if (isCore(point, around)) {
            state[point] = kCore;
            found = true;
        }
    }
    return found;
}

/// Counts until there are enough; the point itself is among those counted.
template <int DIM, typename T>
bool GridSearch<DIM, T>::isCore(std::size_t point, const std::array<Range, kRows>& around) const {
    const auto center = coordinatesOf(point);
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
    // As wide as the coordinates, for the compiler to count several at a time.
    std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t> count = 0;
    for (std::size_t k = points.begin; k < points.end; ++k) {
        count += squaredDistance<DIM>(center, coordinatesOf(k)) < squared_radius ? 1U : 0U;
    }
    return count;
}

template <int DIM, typename T>
bool GridSearch<DIM, T>::isNearAny(std::size_t point, Range points) const {
    const auto center = coordinatesOf(point);
    for (std::size_t begin = points.begin; begin < points.end; begin += kBatch) {
        if (countNear(center, {begin, std::min(begin + kBatch, points.end)}) > 0) {
            return true;
        }
    }
    return false;
}

template <int DIM, typename T>
bool GridSearch<DIM, T>::isNearCorePoint(std::size_t point, Range points) const {
    const auto center = coordinatesOf(point);
    for (std::size_t k = points.begin; k < points.end; ++k) {
        if (state[k] == kCore && squaredDistance<DIM>(center, coordinatesOf(k)) < squared_radius) {
            return true;
        }
    }
    return false;
}

/// Whether a point and one of the others are close, one of them being a core point.
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

/// The same, but compares only points that are close to the box around the others.
template <int DIM, typename T>
bool GridSearch<DIM, T>::areLinkedLargeCells(Range points, Range others) const {
    std::array<T, DIM> low = coordinatesOf(others.begin);
    std::array<T, DIM> high = low;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const T* const values = coordinates[axis].data();
        for (std::size_t k = others.begin; k < others.end; ++k) {
            low[axis] = std::min(low[axis], values[k]);
            high[axis] = std::max(high[axis], values[k]);
        }
    }
    for (std::size_t point = points.begin; point < points.end; ++point) {
        const auto center = coordinatesOf(point);
        std::array<T, DIM> closest;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            closest[axis] = std::min(std::max(center[axis], low[axis]), high[axis]);
        }
        // Rounding keeps the order of differences, squares and sums: no other point is closer.
        if (squaredDistance<DIM>(center, closest) < squared_radius &&
            (state[point] == kCore ? isNearAny(point, others) : isNearCorePoint(point, others))) {
            return true;
        }
    }
    return false;
}

template <int DIM, typename T>
void GridSearch<DIM, T>::joinNeighbours(std::size_t block) {
    const Range cells = cellsOfBlock(block);
    RowCursors cursors(*this, cells.begin);
    for (std::size_t cell = cells.begin; cell < cells.end; ++cell) {
        if (cell_has_core[cell] == 0) {
            for (std::size_t row = 0; row < kRows; ++row) {
                joinBorderPoints(cell, cursors.cellsInReach(cell, row));
            }
            continue;
        }
        // Only with cells before it, near ones first. They have been joined among each other, as a
        // rule: most of those farther away are in the set of this one by then.
        for (std::size_t row = 0; row < kRowsBefore; ++row) {
            const Range others = cursors.cellsInReach(cell, row);
            for (std::size_t other = std::min(others.end, cell); other-- > others.begin;) {
                joinCells(cell, other);
            }
        }
    }
}

/// Joins two cells if core points make all their points one set.
template <int DIM, typename T>
void GridSearch<DIM, T>::joinCells(std::size_t cell, std::size_t other) {
    if (cell_has_core[other] == 0) {
        return;
    }
    const std::uint32_t a = cell_begin[cell];
    const std::uint32_t b = cell_begin[other];
    if (sets.find(a) != sets.find(b) && areLinked(pointsOf(cell), pointsOf(other))) {
        sets.join(a, b);
    }
}

/// Joins the points of a cell without core points with the cells of core points they are close to.
template <int DIM, typename T>
void GridSearch<DIM, T>::joinBorderPoints(std::size_t cell, Range cells) {
    for (std::size_t other = cells.begin; other < cells.end; ++other) {
        if (cell_has_core[other] == 0) {
            continue;
        }
        for (std::uint32_t point = cell_begin[cell]; point < cell_begin[cell + 1]; ++point) {
            if (sets.find(point) != sets.find(cell_begin[other]) &&
                isNearCorePoint(point, pointsOf(other))) {
                sets.join(point, cell_begin[other]);
                state[point] = kBorder;
            }
        }
    }
}

template <int DIM, typename T>
void GridSearch<DIM, T>::writeSets(std::vector<std::uint32_t>& set_of) {
    std::fill(set_of.begin(), set_of.end(), kNoSet);
    for (std::size_t cell = 0; cell < cell_number.size(); ++cell) {
        const Range points = pointsOf(cell);
        const std::uint32_t cell_set = sets.find(cell_begin[cell]);
        for (std::size_t k = points.begin; k < points.end; ++k) {
            if (cell_has_core[cell] != 0) {
                set_of[order[k]] = cell_set;
            } else if (state[k] == kBorder) {
                set_of[order[k]] = sets.find(static_cast<std::uint32_t>(k));
            }
        }
    }
}

template class GridSearch<2, float>;
template class GridSearch<2, double>;
template class GridSearch<3, float>;
template class GridSearch<3, double>;

}  // namespace kelvora
