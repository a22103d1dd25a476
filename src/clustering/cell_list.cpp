// SPDX-License-Identifier: MIT
#include "clustering/cell_list.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "clustering/radix_sort.hpp"

namespace kelvora {

namespace {

/// With more cells on an axis than this, cell numbers would be too coarse.
constexpr double kMostCells = 2147483648.0;

template <int DIM, typename T>
bool isFinite(const KDPoint<DIM, T>& point) {
    return std::all_of(point.coordinates.begin(), point.coordinates.end(),
                       [](T value) { return std::isfinite(value); });
}

unsigned bitsFor(double numbers) {
    return static_cast<unsigned>(std::ilogb(std::max(numbers, 1.0))) + 1;
}

/// Whether squares of this size have the full precision of the type.
template <typename T>
bool isOrdinarySquare(T square) {
    constexpr T kSmallest = std::numeric_limits<T>::min() * T{1 << 24};
    return square > kSmallest && square <= std::numeric_limits<T>::max();
}

}  // namespace

template <int DIM, typename T>
struct CellList<DIM, T>::Extent {
    std::array<T, DIM> low;
    std::array<T, DIM> high;
    std::size_t points;
    std::size_t finite_points;
};

template <int DIM, typename T>
bool CellList<DIM, T>::findCells(const std::vector<Point>& points, T radius,
                                 double cells_per_radius, int reach) {
    if (!isOrdinarySquare(radius * radius)) {
        return false;
    }
    const double cells_per_unit = cells_per_radius / std::abs(static_cast<double>(radius));
    const Extent extent = measure(points);
    if (!placeCells(extent, cells_per_unit, reach)) {
        return false;
    }
    numberPoints(points, extent, cells_per_unit, reach);
    sortByBits(packed, packed_before, index_bits, cell_bits);
    listCells();
    return true;
}

template <int DIM, typename T>
typename CellList<DIM, T>::Extent CellList<DIM, T>::measure(const std::vector<Point>& points) {
    Extent extent{};
    extent.low.fill(std::numeric_limits<T>::max());
    extent.high.fill(std::numeric_limits<T>::lowest());
    extent.points = points.size();
    for (const Point& point : points) {
        if (isFinite(point)) {
            ++extent.finite_points;
            for (std::size_t axis = 0; axis < DIM; ++axis) {
                extent.low[axis] = std::min(extent.low[axis], point.coordinates[axis]);
                extent.high[axis] = std::max(extent.high[axis], point.coordinates[axis]);
            }
        }
    }
    if (extent.finite_points == 0) {
        extent.low.fill(0);
        extent.high.fill(0);
    }
    return extent;
}

/// Returns whether a cell number and a point number fit into one 64-bit integer.
template <int DIM, typename T>
bool CellList<DIM, T>::placeCells(const Extent& extent, double cells_per_unit, int reach) {
    double all_cells = 1;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const double length =
            static_cast<double>(extent.high[axis]) - static_cast<double>(extent.low[axis]);
        const double cells = length * cells_per_unit;
        if (!(cells < kMostCells)) {
            return false;
        }
        cells_on_axis[axis] =
            static_cast<std::uint64_t>(cells) + 1 + 2 * static_cast<std::uint64_t>(reach);
        all_cells *= static_cast<double>(cells_on_axis[axis]);
    }
    index_bits = bitsFor(static_cast<double>(extent.points));
    cell_bits = bitsFor(all_cells);
    return index_bits <= 32 && index_bits + cell_bits <= 64;
}

template <int DIM, typename T>
void CellList<DIM, T>::numberPoints(const std::vector<Point>& points, const Extent& extent,
                                    double cells_per_unit, int reach) {
    packed.clear();
    packed.reserve(extent.finite_points);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!isFinite(points[i])) {
            continue;
        }
        std::uint64_t cell = 0;
        for (std::size_t axis = DIM; axis-- > 0;) {
            const double distance = static_cast<double>(points[i].coordinates[axis]) -
                                    static_cast<double>(extent.low[axis]);
            cell = cell * cells_on_axis[axis] + static_cast<std::uint64_t>(reach) +
                   static_cast<std::uint64_t>(static_cast<std::int64_t>(distance * cells_per_unit));
        }
        packed.push_back(cell << index_bits | i);
    }
}

template <int DIM, typename T>
void CellList<DIM, T>::listCells() {
    number.clear();
    begin.clear();
    std::uint64_t last = 0;  // not the number of any cell
    for (std::size_t k = 0; k < packed.size(); ++k) {
        const std::uint64_t cell = packed[k] >> index_bits;
        if (cell != last) {
            number.push_back(cell);
            begin.push_back(static_cast<std::uint32_t>(k));
            last = cell;
        }
    }
    begin.push_back(static_cast<std::uint32_t>(packed.size()));
}

template <int DIM, typename T>
double CellList<DIM, T>::crowding() const {
    double pairs = 0;
    for (std::size_t cell = 0; cell < cells(); ++cell) {
        const double held = begin[cell + 1] - begin[cell];
        pairs += held * (held - 1);
    }
    return points() > 0 ? pairs / static_cast<double>(points()) : 0;
}

template <int DIM, typename T>
void CellList<DIM, T>::collectPoints(const std::vector<Point>& points) {
    const std::size_t n = packed.size();
    const std::uint64_t index_mask = (std::uint64_t{1} << index_bits) - 1;
    order.resize(n);
    for (auto& axis : coordinates) {
        axis.resize(n + kPadding);
        std::fill(axis.begin() + static_cast<std::ptrdiff_t>(n), axis.end(),
                  std::numeric_limits<T>::quiet_NaN());
    }
    for (std::size_t k = 0; k < n; ++k) {
        order[k] = static_cast<std::uint32_t>(packed[k] & index_mask);
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            coordinates[axis][k] = points[order[k]].coordinates[axis];
        }
    }
}

template class CellList<2, float>;
template class CellList<2, double>;
template class CellList<3, float>;
template class CellList<3, double>;

}  // namespace kelvora
