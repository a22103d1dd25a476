// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Consecutive cells or points.
struct CellRange {
    std::size_t begin;
    std::size_t end;
};

/// Points in the cells of a grid. Only cells with points exist, as a list in the order of their rows:
/// neighbours of a cell are found by walking along the list at the same time in each row around it
/// (`RowCursors`), without a hash table, and without an array over the whole extent, which can be
/// long in time. Rows lie along the first axis, and their cells' points are next to each other.
template <int DIM, typename T>
class CellList {
public:
    using Point = KDPoint<DIM, T>;

    /// Vectors of coordinates may be read up to here behind the last point.
    static constexpr std::size_t kPadding = 3;

    /// Finds the cells of those of `points` that are finite. Returns false if they lie so far apart for
    /// this radius, or the radius is so extreme, that cells cannot be numbered, or that rounding of
    /// cell numbers and squared distances is more than a millionth of the radius.
    ///
    /// \param cells_per_radius  How long the radius is in cells.
    /// \param reach  Empty cells to leave around the points, so that rows do not run into each other.
    bool findCells(const std::vector<Point>& points, T radius, double cells_per_radius, int reach);

    /// Copies the points in the order of their cells, which have been found.
    void collectPoints(const std::vector<Point>& points);

    /// How many others are in the cell of a point, on average.
    double crowding() const;

    std::size_t cells() const { return number.size(); }
    std::size_t points() const { return packed.size(); }
    CellRange pointsOf(CellRange cells) const { return {begin[cells.begin], begin[cells.end]}; }
    CellRange pointsOf(std::size_t cell) const { return {begin[cell], begin[cell + 1]}; }

    std::array<T, DIM> coordinatesOf(std::size_t point) const {
        std::array<T, DIM> result;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            result[axis] = coordinates[axis][point];
        }
        return result;
    }

    std::vector<std::uint64_t> number;  ///< Of each cell, ascending.
    std::vector<std::uint32_t> begin;   ///< First point of each cell, and the end of the last.
    std::array<std::uint64_t, DIM> cells_on_axis;

    std::vector<std::uint32_t> order;  ///< The caller's number of each point.
    /// Not a number in the padding.
    std::array<std::vector<T>, DIM> coordinates;

private:
    /// Where the cells lie.
    struct Extent;

    static Extent measure(const std::vector<Point>& points);
    bool placeCells(const Extent& extent, double cells_per_unit, int reach);
    void numberPoints(const std::vector<Point>& points, const Extent& extent, double cells_per_unit,
                      int reach);
    void listCells();

    std::vector<std::uint64_t> packed;  ///< Number of a point's cell, and below it the point's own.
    std::vector<std::uint64_t> packed_before;  ///< The same before a step of the sorting.
    unsigned index_bits;
    unsigned cell_bits;
};

extern template class CellList<2, float>;
extern template class CellList<2, double>;
extern template class CellList<3, float>;
extern template class CellList<3, double>;

}  // namespace kelvora
