// SPDX-License-Identifier: MIT
#include "simulation/shape.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace kelvora::simulation {
namespace {

std::vector<float> rowOf(const Shape& shape, const Pose& pose, int y, int x_begin, int x_end) {
    std::vector<float> coverage(static_cast<std::size_t>(x_end - x_begin), -1.0F);
    shape.coverRow(pose, y, x_begin, x_end, coverage.data());
    return coverage;
}

double coveredArea(const Shape& shape, const Pose& pose) {
    const Region region = shape.region(pose);
    double area = 0;
    for (int y = region.y_begin; y < region.y_end; ++y) {
        for (const float share : rowOf(shape, pose, y, region.x_begin, region.x_end)) {
            area += static_cast<double>(share);
        }
    }
    return area;
}

TEST(Shape, DiscCoversItsArea) {
    const Shape disc = Shape::disc(20);
    EXPECT_NEAR(coveredArea(disc, {{30.3, 41.7}, {1, 0}}), 3.14159 * 400, 5);
}

TEST(Shape, BarCoversItsAreaHoweverItIsTurned) {
    const Shape bar = Shape::bar(40, 10);
    for (const double half_tangent : {0.0, 0.1, 0.4, 1.0}) {
        const Pose pose{{30.3, 41.7}, angleFromHalfTangent(half_tangent)};
        EXPECT_NEAR(coveredArea(bar, pose), 400, 4) << half_tangent;
    }
}

TEST(Shape, PolygonCoversItsArea) {
    const Shape triangle = Shape::polygon({{20, 0}, {-10, 15}, {-10, -15}});
    EXPECT_NEAR(coveredArea(triangle, {{0, 0}, {1, 0}}), 450, 8);
}

TEST(Shape, CoverageFallsOverOnePixelAcrossTheOutline) {
    const Shape bar = Shape::bar(10, 10);
    const auto row = rowOf(bar, {{10.25, 10}, {1, 0}}, 10, 3, 18);
    EXPECT_FLOAT_EQ(row[1], 0);       // pixel 4; the left side is at 5.25
    EXPECT_FLOAT_EQ(row[2], 0.75F);   // pixel 5
    EXPECT_FLOAT_EQ(row[3], 1);       // pixel 6
    EXPECT_FLOAT_EQ(row[11], 1);      // pixel 14; the right side is at 15.25
    EXPECT_FLOAT_EQ(row[12], 0.25F);  // pixel 15
    EXPECT_FLOAT_EQ(row[13], 0);      // pixel 16
}

TEST(Shape, NothingIsCoveredOutsideOfItsRegion) {
    const Shape shape = Shape::polygon({{9, 0}, {0, 9}, {-9, 0}, {0, -9}});
    const Pose pose{{20.5, 20.2}, angleFromHalfTangent(0.2)};
    const Region region = shape.region(pose);
    for (int y = 0; y < 40; ++y) {
        const auto row = rowOf(shape, pose, y, 0, 40);
        for (int x = 0; x < 40; ++x) {
            const bool inside =
                x >= region.x_begin && x < region.x_end && y >= region.y_begin && y < region.y_end;
            ASSERT_TRUE(inside || row[static_cast<std::size_t>(x)] == 0) << x << ' ' << y;
        }
    }
}

TEST(Shape, BoundsOfATurnedBarReachItsCorners) {
    const Box box = Shape::bar(20, 4).bounds({{50, 50}, {0, 1}});
    EXPECT_DOUBLE_EQ(box.left, 48);
    EXPECT_DOUBLE_EQ(box.right, 52);
    EXPECT_DOUBLE_EQ(box.top, 40);
    EXPECT_DOUBLE_EQ(box.bottom, 60);
}

TEST(Shape, RadiusReachesTheFurthestCorner) {
    EXPECT_DOUBLE_EQ(Shape::bar(6, 8).radius(), 5);
    EXPECT_DOUBLE_EQ(Shape::disc(3).radius(), 3);
}

TEST(Shape, RefusesSizesThatAreNotAboveZero) {
    EXPECT_THROW(Shape::disc(0), std::invalid_argument);
    EXPECT_THROW(Shape::disc(std::nan("")), std::invalid_argument);
    EXPECT_THROW(Shape::bar(-1, 5), std::invalid_argument);
    EXPECT_THROW(Shape::bar(5, 0), std::invalid_argument);
}

TEST(Shape, RefusesOutlinesThatAreNotConvexPolygonsAroundTheOrigin) {
    EXPECT_THROW(Shape::polygon({{1, 0}, {-1, 0}}), std::invalid_argument);
    EXPECT_THROW(Shape::polygon({{1, 0}, {-1, -1}, {-1, 1}}), std::invalid_argument);
    EXPECT_THROW(Shape::polygon({{9, 0}, {7, 1}, {7, -1}}), std::invalid_argument);
    const std::vector<Point> dented{{9, 0}, {1, 1}, {0, 9}, {-9, 0}, {0, -9}};
    EXPECT_THROW(Shape::polygon(dented), std::invalid_argument);
}

}  // namespace
}  // namespace kelvora::simulation
