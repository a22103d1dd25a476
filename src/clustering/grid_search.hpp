// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "clustering/cell_list.hpp"
#include "clustering/concurrent_sets.hpp"
#include "clustering/parallel_search.hpp"
#include "clustering/row_cursors.hpp"

namespace kelvora {

/// Finds and joins neighbours with a grid of cells so small that all points in a cell are
/// neighbours. If a cell has enough points, all of them are core points, without a search. Two
/// cells are joined as soon as one pair of their points is close. So the denser the points, the
/// fewer are compared.
///
/// With dense points, two jobs and 50,000 points, this takes 0.3 to 5 % of the time of tree
/// searches that store all neighbours; a search in `FlatTree` takes 7 to 40 times as long as this.
/// With sparse points, most cells hold only one point, and `WideGridSearch`
/// is faster. See benchmarks/README.md.
template <int DIM, typename T>
class GridSearch : public ParallelSearch {
public:
    /// Length of the radius in cells. A little more than the diagonal of a cell, so that all points
    /// in a cell are neighbours despite rounding of cell numbers and squared distances.
    static constexpr double kCellsPerRadius =
        (DIM == 2 ? 1.4142135623730951 : 1.7320508075688772) / 0.999;
    /// Largest distance of a neighbour on each axis, in cells. Sides are longer
    /// than half the radius.
    static constexpr int kReach = 2;

    explicit GridSearch(const CellList<DIM, T>& cells_);

    /// Prepares for the points collected in the cells.
    void reset(T radius, std::size_t min_pts);

    std::size_t blocks() const override;
    void findCorePoints(std::size_t block) override;
    void joinNeighbours(std::size_t block) override;
    void writeSets(std::vector<std::uint32_t>& set_of) override;

private:
    using Rows = CellRows<DIM, kReach>;
    using Cursors = RowCursors<DIM, T, kReach>;
    /// The row of the cell itself and those before it.
    static constexpr std::size_t kRowsBefore = Rows::kCount / 2 + 1;

    using Range = CellRange;
    enum PointState : std::uint8_t { kOrdinary, kCore, kBorder };

    Range cellsOfBlock(std::size_t block) const;

    bool markCorePoints(Range points, const std::array<Range, Rows::kCount>& around);
    bool isCore(std::size_t point, const std::array<Range, Rows::kCount>& around) const;
    std::size_t countNear(const std::array<T, DIM>& center, Range points) const;
    bool isNearAny(std::size_t point, Range points) const;
    bool isNearCorePoint(std::size_t point, Range points) const;
    bool areLinked(Range points, Range others) const;
    bool areLinkedLargeCells(Range points, Range others) const;
    void joinCells(std::size_t cell, std::size_t other);
    void joinBorderPoints(std::size_t cell, Range others);

    const CellList<DIM, T>& cells;
    /// The row of the cell itself, then the rows before it from near to far, then
    /// the rows after it.
    std::array<typename Rows::Offset, Rows::kCount> near_to_far;
    T squared_radius;
    std::size_t min_pts;

    // Threads use these without a lock or atomics, and do not race:
    // - Each block of cells is handled by one thread per phase, so no two threads write the same
    //   element. Elements are bytes, not bits: neighbouring ones may be written at the same time.
    // - While core points are found, each thread writes only the elements of its block, and no
    //   thread reads any.
    // - A `TaskGate` separates the phases: every write of the first happens before the second.
    // - While neighbours are joined, no thread writes `cell_has_core`. Of `state`, the thread of a
    //   block writes the points of cells without core points. Threads read only the state of points
    //   in cells with core points, which does not change.
    std::vector<std::uint8_t> state;  ///< `PointState` of points, in the order of their cells.
    std::vector<std::uint8_t> cell_has_core;  ///< 1 for cells with core points, else 0.

    ConcurrentSets sets;  ///< Of points. The first point represents a cell that has core points.
};

extern template class GridSearch<2, float>;
extern template class GridSearch<2, double>;
extern template class GridSearch<3, float>;
extern template class GridSearch<3, double>;

}  // namespace kelvora
