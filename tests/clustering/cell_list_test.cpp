// SPDX-License-Identifier: MIT
#include "clustering/cell_list.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "clustering/row_cursors.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using Plane = PointKind<2, float>;
using Space = PointKind<3, float>;

TEST(CellListOfPoints, PutsPointsInTheOrderOfRowsAndKeepsTheirNumbers) {
    CellList<2, float> cells;
    const Plane::Points points = {at<Plane>(1.5, 1.5), at<Plane>(0.5, 0), at<Plane>(1.2, 0),
                                  at<Plane>(0, 0.5), at<Plane>(1.9, 1.1)};
    ASSERT_TRUE(cells.findCells(points, 1, 1, 1));
    cells.collectPoints(points);
    EXPECT_EQ(cells.order, (std::vector<std::uint32_t>{1, 3, 2, 0, 4}));
    EXPECT_EQ(cells.begin, (std::vector<std::uint32_t>{0, 2, 3, 5}));
    EXPECT_EQ(cells.coordinatesOf(2), points[2].coordinates);
    EXPECT_TRUE(std::isnan(cells.coordinates[0][cells.points()]));
}

TEST(CellListOfPoints, CountsTheOthersInTheCellOfAPoint) {
    CellList<2, float> cells;
    ASSERT_TRUE(cells.findCells(line<Plane>({0, 0.1, 0.2, 0.3, 5}), 1, 1, 1));
    EXPECT_DOUBLE_EQ(cells.crowding(), 4 * 3 / 5.0);
    ASSERT_TRUE(cells.findCells({}, 1, 1, 1));
    EXPECT_EQ(cells.crowding(), 0);
}

TEST(CellListOfPoints, LeavesOutPointsThatAreNotFinite) {
    CellList<2, float> cells;
    const auto points = line<Plane>(
        {0, std::numeric_limits<double>::infinity(), 1, std::numeric_limits<double>::quiet_NaN()});
    ASSERT_TRUE(cells.findCells(points, 1, 1, 1));
    EXPECT_EQ(cells.points(), 2U);
}

TEST(CellListOfPoints, RefusesCoordinatesOutOfRangeAndInvalidRadii) {
    CellList<2, float> cells;
    EXPECT_TRUE(cells.findCells(line<Plane>({0, 1e9}), 1, 1, 1));
    EXPECT_FALSE(cells.findCells(line<Plane>({0, 1e10}), 1, 1, 1));
    for (const float radius : {0.0F, 1e-20F, 1e30F, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_FALSE(cells.findCells(line<Plane>({0, 1}), radius, 1, 1)) << radius;
    }
}

/// Whether two cells, with points at whole coordinates, are no farther away on any axis.
bool isInReach(const CellList<3, float>& cells, std::size_t a, std::size_t b, int reach) {
    const auto from = cells.coordinatesOf(cells.begin[a]);
    const auto to = cells.coordinatesOf(cells.begin[b]);
    bool result = true;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        result = result && std::abs(from[axis] - to[axis]) <= static_cast<float>(reach);
    }
    return result;
}

template <int REACH>
void expectAllCellsInReach(const Space::Points& points, std::size_t first_cell) {
    CellList<3, float> cells;
    ASSERT_TRUE(cells.findCells(points, 1, 1, REACH));
    cells.collectPoints(points);
    using Rows = CellRows<3, REACH>;
    RowCursors<3, float, REACH> cursors(cells, Rows::offsets(), first_cell);
    for (std::size_t cell = first_cell; cell < cells.cells(); ++cell) {
        std::vector<std::size_t> found;
        for (std::size_t row = 0; row < Rows::kCount; ++row) {
            const CellRange range = cursors.cellsInReach(cell, row);
            for (std::size_t other = range.begin; other < range.end; ++other) {
                found.push_back(other);
            }
        }
        std::vector<std::size_t> expected;
        for (std::size_t other = 0; other < cells.cells(); ++other) {
            if (isInReach(cells, cell, other, REACH)) {
                expected.push_back(other);
            }
        }
        ASSERT_EQ(found, expected) << "cell " << cell;
    }
}

TEST(CellListOfPoints, HasTheCellsInReachWhereCursorsFindThem) {
    Random random(3);
    const auto points = randomGridPoints<Space>(random, 300, 0, 9, 1);
    for (const std::size_t first_cell : {0U, 100U}) {
        expectAllCellsInReach<1>(points, first_cell);
        expectAllCellsInReach<2>(points, first_cell);
    }
}

}  // namespace
}  // namespace kelvora::test
