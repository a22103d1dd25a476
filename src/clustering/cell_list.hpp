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

/// Points in the cells of a grid.
///
/// Only cells with points are stored, in a list ordered by rows. `RowCursors` finds the neighbours
/// of a cell by walking along the list in all rows around the cell at once. This needs neither a
/// hash table nor an array over the whole extent, which can be long in time. Rows lie along the
/// first axis, and the points of a row are contiguous.
template <int DIM, typename T>
class CellList {
public:
    using Point = KDPoint<DIM, T>;

    /// Elements after the last point that vectors of coordinates may read.
    static constexpr std::size_t kPadding = 3;

    /// Finds the cells of all finite points. Returns false if the cells cannot be numbered, or if
    /// rounding of cell numbers and squared distances exceeds a millionth of the radius. This
    /// happens if the points are too far apart for the radius, or the radius is extreme.
    ///
    /// \param cells_per_radius  Length of the radius in cells.
    /// \param reach  Empty cells to leave around the points, so that
    ///     neighbouring rows stay separate.
    bool findCells(const std::vector<Point>& points, T radius, double cells_per_radius, int reach);

    /// Copies the points in the order of their cells. Call `findCells` first.
    void collectPoints(const std::vector<Point>& points);

    /// Returns how many other points share a cell with a point, on average.
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

    std::vector<std::uint64_t> number;  ///< Number of each cell, ascending.
    std::vector<std::uint32_t> begin;   ///< First point of each cell, and the end of the last.
    std::array<std::uint64_t, DIM> cells_on_axis;

    std::vector<std::uint32_t> order;  ///< Index of each point in the caller's vector.
    /// By axis; NaN in the padding.
    std::array<std::vector<T>, DIM> coordinates;

private:
    /// The range of the coordinates.
    struct Extent;

    static Extent measure(const std::vector<Point>& points);
    bool placeCells(const Extent& extent, double cells_per_unit, int reach);
    void numberPoints(const std::vector<Point>& points, const Extent& extent, double cells_per_unit,
                      int reach);
    void listCells();

    std::vector<std::uint64_t>
        packed;  ///< Cell number in the high bits, point index in the low bits.
    std::vector<std::uint64_t> packed_before;  ///< Second buffer for sorting.
    unsigned index_bits;
    unsigned cell_bits;
};

extern template class CellList<2, float>;
extern template class CellList<2, double>;
extern template class CellList<3, float>;
extern template class CellList<3, double>;

}  // namespace kelvora
