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

/// Finds and joins neighbours with a grid of cells as wide as the radius, for sparse points.
/// Neighbours are then in adjacent cells: 3 rows of 3 cells in the plane, and 9 rows in space. The
/// small cells of `GridSearch` need 5 rows of 5 cells, and 25 rows, and most of these cells contain
/// one point or none. Points in a cell need not be neighbours, so each point is compared with all
/// points around it, several at a time.
///
/// This takes about 70 ns per point, and 0.8 ns for each other point in the cells around it. In
/// recordings with most objects far apart, this is 35 to 60 % of the time of `GridSearch`; in
/// dense scenes, 2 to 25 times as long. `GridSearch` is faster if a point shares its cell with more
/// than `kMostCrowding` others. With fewer, at most 27 times as many are around
/// a point. See benchmarks/README.md.
template <int DIM, typename T>
class WideGridSearch : public ParallelSearch {
public:
    using Cells = CellList<DIM, T>;

    /// Length of the radius in cells. A little less than one, so that every neighbour is in an
    /// adjacent cell despite rounding.
    static constexpr double kCellsPerRadius = 0.999;
    /// Largest distance of a neighbour on each axis, in cells.
    static constexpr int kReach = 1;
    /// `CellList::crowding` above which `GridSearch` is faster. In measurements it is slower up to
    /// 9, and faster from 17.
    static constexpr double kMostCrowding = 13;

    explicit WideGridSearch(const Cells& cells_) : cells(cells_) {}

    /// Prepares for the points collected in the cells.
    void reset(T radius, std::size_t min_pts);

    std::size_t blocks() const override;
    void findCorePoints(std::size_t block) override;
    void joinNeighbours(std::size_t block) override;
    void writeSets(std::vector<std::uint32_t>& set_of) override;

private:
    using Rows = CellRows<DIM, kReach>;
    using Cursors = RowCursors<DIM, T, kReach>;
    static constexpr auto kRowOffsets = Rows::offsets();
    /// Points in each row around a cell.
    using Around = std::array<CellRange, Rows::kCount>;
    /// The row of a cell itself and the rows before it.
    static constexpr std::size_t kRowsBefore = Rows::kCount / 2 + 1;
    using PointsBefore = std::array<CellRange, kRowsBefore>;

    // Points that are compared together.
    using Integer = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    static constexpr std::size_t kVectorBytes = 16;
    static constexpr std::size_t kWidth = kVectorBytes / sizeof(T);
    static_assert(kWidth <= Cells::kPadding + 1);
    // NOLINTNEXTLINE(modernize-use-using): a vector of a dependent type needs typedef.
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

    // Threads use these without a lock or atomics, and do not race: while core points are found,
    // the thread of a block writes its own elements only, and no thread reads any. A `TaskGate`
    // separates the phases. While neighbours are joined, no thread writes. Elements are bytes, not
    // bits, as neighbouring ones may be written at the same time.
    std::vector<std::uint8_t> is_core;  ///< Of points, in the order of their cells, and padding.
    std::vector<std::uint8_t> cell_has_core;  ///< 1 for cells with core points, else 0.

    ConcurrentSets sets;  ///< Of points.
};

extern template class WideGridSearch<2, float>;
extern template class WideGridSearch<2, double>;
extern template class WideGridSearch<3, float>;
extern template class WideGridSearch<3, double>;

}  // namespace kelvora
