// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/concurrent_sets.hpp"
#include "clustering/parallel_search.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Finds and joins neighbours with a grid of cells so small that all points of a cell are neighbours
/// of each other. A cell with enough points has core points only, none of which needs a search, and
/// two cells are joined as soon as one pair of their points is close: the denser the points, the
/// fewer of them are looked at.
///
/// Only cells with points exist, as a list in the order of their rows: neighbours of a cell are found
/// by walking along the list at the same time in each row around it, without a hash table, and
/// without an array over the whole extent, which can be long in time.
///
/// With two jobs and 50,000 points, this takes 0.3 to 4 % of the time of searches in a tree that keep
/// all neighbours where points are dense, and 30 to 45 % where most cells hold but one: see
/// benchmarks/README.md. A search in `FlatTree` takes 1.4 times as long in such sparse sets, and 8 to
/// 40 times in dense ones.
template <int DIM, typename T>
class GridSearch : public ParallelSearch {
public:
    using Point = KDPoint<DIM, T>;

    /// Takes in `points`, those that are finite. Returns false if they lie so far apart for this
    /// radius, or the radius is so extreme, that cells cannot be numbered or compared exactly.
    bool build(const std::vector<Point>& points, T radius, std::size_t min_pts);

    std::size_t blocks() const override;
    void findCorePoints(std::size_t block) override;
    void joinNeighbours(std::size_t block) override;
    void writeSets(std::vector<std::uint32_t>& set_of) override;

private:
    /// Cells that a neighbour can be away on each axis: sides are longer than half the radius.
    static constexpr int kReach = 2;
    static constexpr std::size_t kRowWidth = 2 * kReach + 1;
    static constexpr std::size_t kRows = DIM == 2 ? kRowWidth : kRowWidth * kRowWidth;
    /// The row of the cell itself and those before it.
    static constexpr std::size_t kRowsBefore = kRows / 2 + 1;

    /// Consecutive cells or points.
    struct Range {
        std::size_t begin;
        std::size_t end;
    };
    struct Extent;
    class RowCursors;
    enum PointState : std::uint8_t { kOrdinary, kCore, kBorder };

    bool measure(const std::vector<Point>& points, T radius, Extent& extent) const;
    void numberCells(const std::vector<Point>& points, const Extent& extent);
    void sortByCell(const Extent& extent);
    void collectPoints(const std::vector<Point>& points, const Extent& extent);
    void collectCells(const Extent& extent);
    void placeRows(const Extent& extent);

    Range cellsOfBlock(std::size_t block) const;
    Range pointsOf(Range cells) const { return {cell_begin[cells.begin], cell_begin[cells.end]}; }
    Range pointsOf(std::size_t cell) const { return {cell_begin[cell], cell_begin[cell + 1]}; }
    std::array<T, DIM> coordinatesOf(std::size_t point) const;

    bool markCorePoints(Range points, const std::array<Range, kRows>& around);
    bool isCore(std::size_t point, const std::array<Range, kRows>& around) const;
    std::size_t countNear(const std::array<T, DIM>& center, Range points) const;
    bool isNearAny(std::size_t point, Range points) const;
    bool isNearCorePoint(std::size_t point, Range points) const;
    bool areLinked(Range points, Range others) const;
    bool areLinkedLargeCells(Range points, Range others) const;
    void joinCells(std::size_t cell, std::size_t other);
    void joinBorderPoints(std::size_t cell, Range cells);

    T squared_radius;
    std::size_t min_pts;
    std::vector<std::uint64_t> packed;  ///< Number of a point's cell, and below it the point's own.
    std::vector<std::uint64_t> packed_before;  ///< The same before a step of the sorting.

    // Points in the order of their cells.
    std::vector<std::uint32_t> order;
    std::array<std::vector<T>, DIM> coordinates;
    std::vector<std::uint8_t> state;
    ConcurrentSets sets;  ///< The first point stands for a cell that has core points.

    std::vector<std::uint64_t> cell_number;
    std::vector<std::uint32_t> cell_begin;  ///< First point of each cell, and the end of the last.
    std::vector<std::uint8_t> cell_has_core;        ///< Not bool: threads write neighbouring ones.
    std::array<std::uint64_t, kRows> row_distance;  ///< From a cell to the first in reach in a row.
};

extern template class GridSearch<2, float>;
extern template class GridSearch<2, double>;
extern template class GridSearch<3, float>;
extern template class GridSearch<3, double>;

}  // namespace kelvora
