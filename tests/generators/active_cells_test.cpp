// SPDX-License-Identifier: MIT
#include "generators/active_cells.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <tuple>
#include <utility>
#include <vector>

#include "reference/grid_based_cluster_generator.hpp"
#include "support/event_builders.hpp"

namespace kelvora {

bool operator==(const CellRegion& a, const CellRegion& b) {
    return std::tie(a.min_row, a.min_col, a.rows_spanned, a.cols_spanned) ==
           std::tie(b.min_row, b.min_col, b.rows_spanned, b.cols_spanned);
}

std::ostream& operator<<(std::ostream& out, const CellRegion& region) {
    return out << region.rows_spanned << " rows and " << region.cols_spanned << " columns from ("
               << region.min_row << ", " << region.min_col << ')';
}

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<CellRegion> take(ActiveCells& cells) {
    std::vector<CellRegion> regions;
    cells.takeRegions(regions);
    return regions;
}

/// Row and column.
using Cell = std::pair<int, int>;

/// The regions of blocks marked in a grid of the given size.
std::vector<CellRegion> regionsOf(int rows, int cols, const std::vector<Cell>& blocks) {
    ActiveCells cells(rows, cols);
    for (const auto& [row, col] : blocks) {
        cells.markBlock(static_cast<std::size_t>(row), static_cast<std::size_t>(col));
    }
    return take(cells);
}

TEST(ActiveCells, HaveNoRegionsWhileNothingIsMarked) {
    EXPECT_THAT(regionsOf(3, 3, {}), IsEmpty());
}

TEST(ActiveCells, HaveNoRegionsInAnEmptyGrid) {
    ActiveCells cells;
    EXPECT_THAT(take(cells), IsEmpty());
}

TEST(ActiveCells, MarkABlockOfTwoByTwo) {
    EXPECT_THAT(regionsOf(5, 5, {{1, 2}}), ElementsAre(CellRegion{1, 2, 2, 2}));
}

TEST(ActiveCells, CutBlocksAtTheLastRowAndColumn) {
    EXPECT_THAT(regionsOf(5, 5, {{4, 1}}), ElementsAre(CellRegion{4, 1, 1, 2}));
    EXPECT_THAT(regionsOf(5, 5, {{1, 4}}), ElementsAre(CellRegion{1, 4, 2, 1}));
    EXPECT_THAT(regionsOf(5, 5, {{4, 4}}), ElementsAre(CellRegion{4, 4, 1, 1}));
    EXPECT_THAT(regionsOf(1, 1, {{0, 0}}), ElementsAre(CellRegion{0, 0, 1, 1}));
}

TEST(ActiveCells, DoNotCarryABlockOverIntoTheNextRow) {
    EXPECT_THAT(regionsOf(4, 4, {{0, 3}, {2, 0}}),
                ElementsAre(CellRegion{0, 3, 2, 1}, CellRegion{2, 0, 2, 2}));
}

TEST(ActiveCells, JoinBlocksThatTouchAtAnEdge) {
    EXPECT_THAT(regionsOf(3, 6, {{0, 0}, {0, 2}}), ElementsAre(CellRegion{0, 0, 2, 4}));
    EXPECT_THAT(regionsOf(6, 3, {{0, 0}, {2, 0}}), ElementsAre(CellRegion{0, 0, 4, 2}));
}

TEST(ActiveCells, KeepBlocksApartThatTouchOnlyAtACorner) {
    EXPECT_THAT(regionsOf(6, 6, {{0, 0}, {2, 2}}),
                ElementsAre(CellRegion{0, 0, 2, 2}, CellRegion{2, 2, 2, 2}));
    EXPECT_THAT(regionsOf(6, 6, {{0, 2}, {2, 0}}),
                ElementsAre(CellRegion{0, 2, 2, 2}, CellRegion{2, 0, 2, 2}));
}

TEST(ActiveCells, OrderRegionsByTheirFirstCells) {
    // The second region extends further left than the first, but begins further right.
    const std::vector<Cell> blocks = {{0, 3}, {0, 8}, {2, 8}, {4, 8}, {4, 6},
                                      {4, 4}, {4, 2}, {4, 0}, {9, 0}};
    EXPECT_THAT(
        regionsOf(11, 10, blocks),
        ElementsAre(CellRegion{0, 3, 2, 2}, CellRegion{0, 0, 6, 10}, CellRegion{9, 0, 2, 2}));
}

TEST(ActiveCells, JoinBranchesThatMeetLate) {
    // Three branches that join at the bottom. The middle one joins the left one first.
    const std::vector<Cell> comb = {{0, 0}, {2, 0}, {4, 0}, {0, 4}, {2, 4}, {4, 4}, {0, 8},
                                    {2, 8}, {4, 8}, {4, 2}, {6, 4}, {6, 6}, {6, 8}};
    EXPECT_THAT(regionsOf(8, 10, comb), ElementsAre(CellRegion{0, 0, 8, 10}));
}

TEST(ActiveCells, KeepARegionApartThatLiesInsideAnother) {
    std::vector<Cell> ring;
    for (int i = 0; i <= 10; i += 2) {
        ring.insert(ring.end(), {{0, i}, {10, i}, {i, 0}, {i, 10}});
    }
    ring.emplace_back(5, 5);
    EXPECT_THAT(regionsOf(12, 12, ring),
                ElementsAre(CellRegion{0, 0, 12, 12}, CellRegion{5, 5, 2, 2}));
}

TEST(ActiveCells, AreClearedWhenTheirRegionsAreTaken) {
    ActiveCells cells(4, 4);
    cells.markBlock(3, 3);
    cells.markBlock(0, 0);
    EXPECT_THAT(take(cells), ElementsAre(CellRegion{0, 0, 2, 2}, CellRegion{3, 3, 1, 1}));
    EXPECT_THAT(take(cells), IsEmpty());
    cells.markBlock(1, 1);
    EXPECT_THAT(take(cells), ElementsAre(CellRegion{1, 1, 2, 2}));
}

TEST(ActiveCells, EmptyTheListOfRegionsFirst) {
    ActiveCells cells(4, 4);
    std::vector<CellRegion> regions = {{9, 9, 9, 9}};
    cells.takeRegions(regions);
    EXPECT_THAT(regions, IsEmpty());
}

TEST(ActiveCells, ReportAFullGridAsOneRegion) {
    for (const int cols : {63, 64, 65, 127, 128, 129}) {
        std::vector<Cell> blocks;
        for (int row = 0; row < 3; ++row) {
            for (int col = 0; col < cols; ++col) {
                blocks.emplace_back(row, col);
            }
        }
        EXPECT_THAT(regionsOf(3, cols, blocks), ElementsAre(CellRegion{0, 0, 3, cols}));
    }
}

/// Widths around the words of 64 cells in which rows are stored.
class ActiveCellsInRowsOf : public ::testing::TestWithParam<int> {};

TEST_P(ActiveCellsInRowsOf, MarkEveryBlockWhereItBelongs) {
    const int cols = GetParam();
    for (int row = 0; row < 2; ++row) {
        for (int col = 0; col < cols; ++col) {
            EXPECT_THAT(regionsOf(2, cols, {{row, col}}),
                        ElementsAre(CellRegion{row, col, 2 - row, std::min(2, cols - col)}));
        }
    }
}

/// The regions that the model of the generator finds in a grid of pixels; an event marks a block.
std::vector<CellRegion> modelledRegions(int rows, int cols, const std::vector<Cell>& blocks) {
    reference::GridBasedClusterGenerator model(cols, rows, 1, 1, std::max(rows, cols), 1,
                                               POLARITY_FREE, false, 1);
    for (const auto& [row, col] : blocks) {
        const Event2D event = test::positiveEvent(col, row);
        model.processEvent(&event);
    }
    std::vector<ClusterGeometry> clusters;
    model.generateClusters(0, clusters);
    std::vector<CellRegion> regions;
    for (const ClusterGeometry& cluster : clusters) {
        regions.push_back({static_cast<int>(cluster.y), static_cast<int>(cluster.x),
                           static_cast<int>(cluster.height), static_cast<int>(cluster.width)});
    }
    return regions;
}

TEST_P(ActiveCellsInRowsOf, FormTheRegionsThatTheModelFinds) {
    const int cols = GetParam();
    test::Random random(static_cast<std::uint64_t>(cols));
    for (int round = 0; round < 60; ++round) {
        const int rows = test::randomInt(random, 1, 12);
        std::vector<Cell> blocks(random() % 40);
        for (auto& [row, col] : blocks) {
            row = test::randomInt(random, 0, rows - 1);
            col = test::randomInt(random, 0, cols - 1);
        }
        EXPECT_EQ(regionsOf(rows, cols, blocks), modelledRegions(rows, cols, blocks));
    }
}

INSTANTIATE_TEST_SUITE_P(Cells, ActiveCellsInRowsOf,
                         ::testing::Values(1, 2, 3, 31, 32, 62, 63, 64, 65, 66, 127, 128, 129,
                                           192));

}  // namespace
}  // namespace kelvora
