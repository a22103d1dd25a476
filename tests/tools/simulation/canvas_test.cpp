// SPDX-License-Identifier: MIT
#include "simulation/canvas.hpp"

#include <gtest/gtest.h>

namespace kelvora::simulation {
namespace {

SceneObject discAt(double x, double contrast) {
    return {ObjectKind::kDisc, Shape::disc(10), contrast, {{x, 25}, {1, 0}}, {0, 0}};
}

TEST(Canvas, IsBackgroundWhereNothingIsPainted) {
    Canvas canvas(80, 50);
    canvas.paint(Scene(80, 50, {discAt(20, 0.7)}));
    EXPECT_FLOAT_EQ(canvas.row(25)[20], 0.7F);
    EXPECT_FLOAT_EQ(canvas.row(25)[40], 0);
    EXPECT_FLOAT_EQ(canvas.row(5)[20], 0);
}

TEST(Canvas, LaterObjectsHideEarlierOnes) {
    Canvas canvas(80, 50);
    canvas.paint(Scene(80, 50, {discAt(20, 0.7), discAt(32, -0.4)}));
    EXPECT_FLOAT_EQ(canvas.row(25)[15], 0.7F);
    EXPECT_FLOAT_EQ(canvas.row(25)[26], -0.4F);
}

TEST(Canvas, PaintsOnlyPartsOnTheSensor) {
    Canvas canvas(80, 50);
    canvas.paint(Scene(80, 50, {discAt(-2, 0.7), discAt(82, -0.4), discAt(200, 1)}));
    EXPECT_FLOAT_EQ(canvas.row(25)[0], 0.7F);
    EXPECT_FLOAT_EQ(canvas.row(25)[79], -0.4F);
    EXPECT_FLOAT_EQ(canvas.row(26)[40], 0);
}

TEST(Canvas, ClearPutsTheBackgroundBackInTheRegionOnly) {
    Canvas canvas(80, 50);
    canvas.paint(Scene(80, 50, {discAt(20, 0.7)}));
    canvas.clear({0, 0, 20, 50});
    EXPECT_FLOAT_EQ(canvas.row(25)[19], 0);
    EXPECT_FLOAT_EQ(canvas.row(25)[20], 0.7F);
}

}  // namespace
}  // namespace kelvora::simulation
