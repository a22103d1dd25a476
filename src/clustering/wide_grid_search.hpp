// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "clustering/cell_list.hpp"
#include "clustering/concurrent_sets.hpp"
#include "clustering/parallel_search.hpp"
#include "clustering/row_cursors.hpp"

namespace kelvora {

/// Finds and joins neighbours with a grid of cells as wide as the radius, for sparse points. Neighbours
/// are in the cells next to each other then: in 3 rows of 3 cells in the plane, and in 9 rows in
/// space, where the small cells of `GridSearch` need 5 of 5 and 25, most of them with one point or
/// none. Points of a cell need not be neighbours, so that each point is compared with all of those
/// around it, several at a time.
///
/// The time is about 70 ns for each point and 0.8 ns for each of the others in the cells around it. In
/// recordings with most objects far apart, it is 35 to 60 % of that of `GridSearch`; in dense scenes,
/// 2 to 25 times as long. With more than `kMostCrowding` others in the cell of a point, `GridSearch` is
/// faster; with fewer, a point has no more than 27 times as many around it. See benchmarks/README.md.
template <int DIM, typename T>
class WideGridSearch : public ParallelSearch {
public:
    using Cells = CellList<DIM, T>;

    /// How long the radius is in cells: a little less than one, so that rounding takes no neighbour
    /// farther away than the next cell.
    static constexpr double kCellsPerRadius = 0.999;
    /// Cells that a neighbour can be away on each axis.
    static constexpr int kReach = 1;
    /// `CellList::crowding` above which the small cells of `GridSearch` are faster. Measured: it is
    /// slower at up to 9, and faster from 17 on.
    static constexpr double kMostCrowding = 13;

    explicit WideGridSearch(const Cells& cells_) : cells(cells_) {}

    /// Takes in the points that have been collected in the cells.
    void reset(T radius, std::size_t min_pts);

    std::size_t blocks() const override;
    void findCorePoints(std::size_t block) override;
    void joinNeighbours(std::size_t block) override;
    void writeSets(std::vector<std::uint32_t>& set_of) override;

private:
    using Rows = CellRows<DIM, kReach>;
    using Cursors = RowCursors<DIM, T, kReach>;
    static constexpr auto kRowOffsets = Rows::offsets();
    /// The points in each row around a cell.
    using Around = std::array<CellRange, Rows::kCount>;
    /// Those in the rows before it, and in its own.
    static constexpr std::size_t kRowsBefore = Rows::kCount / 2 + 1;
    using PointsBefore = std::array<CellRange, kRowsBefore>;

    // Points that are compared together.
    using Integer = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    static constexpr std::size_t kVectorBytes = 16;
    static constexpr std::size_t kWidth = kVectorBytes / sizeof(T);
    static_assert(kWidth <= Cells::kPadding + 1);
    // NOLINTNEXTLINE(modernize-use-using): vectors of a template's type are not to be had otherwise.
    typedef T Values __attribute__((vector_size(kVectorBytes)));
    // NOLINTNEXTLINE(modernize-use-using)
    typedef Integer Integers __attribute__((vector_size(kVectorBytes)));

    CellRange cellsOfBlock(std::size_t block) const;
    bool isCore(std::size_t point, const Around& around) const;
    bool hasCore(CellRange range) const;
    void joinWithNear(std::uint32_t point, const PointsBefore& before);
    Integers compare(const std::array<T, DIM>& center, std::size_t first) const;
    template <class Ranges, class OnVector>
    void compareAll(std::size_t point, const Ranges& rows, OnVector onVector) const;

    const Cells& cells;
    T squared_radius;
    std::size_t min_pts;

    // Threads use these without a lock or atomics, and do not race: while core points are found, the
    // thread of a block writes its own elements only, and no thread reads any. A `TaskGate` separates
    // the phases. While neighbours are joined, no thread writes. Elements are bytes, not bits, as
    // neighbouring ones may be written at the same time.
    std::vector<std::uint8_t> is_core;  ///< Of points, in the order of their cells, and padding.
    std::vector<std::uint8_t> cell_has_core;  ///< 1 for cells with core points, else 0.

    ConcurrentSets sets;  ///< Of points.
};

extern template class WideGridSearch<2, float>;
extern template class WideGridSearch<2, double>;
extern template class WideGridSearch<3, float>;
extern template class WideGridSearch<3, double>;

}  // namespace kelvora
