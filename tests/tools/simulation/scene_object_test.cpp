// SPDX-License-Identifier: MIT
#include "simulation/scene_object.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace kelvora::simulation {
namespace {

SceneObject discAt(double x, double y, double speed_x, double speed_y) {
    return {ObjectKind::kDisc, Shape::disc(10), 0.5, {{x, y}, {1, 0}}, {speed_x, speed_y}};
}

TEST(SceneObject, MovesStraightOn) {
    SceneObject disc = discAt(50, 50, 100, -40);
    disc.advance(0.1, 200, 100);
    EXPECT_DOUBLE_EQ(disc.pose.centre.x, 60);
    EXPECT_DOUBLE_EQ(disc.pose.centre.y, 46);
}

TEST(SceneObject, TurnsBackWhenHalfOfItsRadiusHasLeftTheSensor) {
    SceneObject disc = discAt(194, 50, 100, 0);
    disc.advance(0.02, 200, 100);
    EXPECT_DOUBLE_EQ(disc.pose.centre.x, 194);
    EXPECT_DOUBLE_EQ(disc.velocity.x, -100);
}

TEST(SceneObject, EntersFromOutsideWithoutTurningBack) {
    SceneObject disc = discAt(-20, 50, 100, 0);
    disc.advance(0.1, 200, 100);
    EXPECT_DOUBLE_EQ(disc.pose.centre.x, -10);
    EXPECT_DOUBLE_EQ(disc.velocity.x, 100);
}

TEST(SceneObject, TurnsAtItsRate) {
    SceneObject bar{ObjectKind::kBar, Shape::bar(20, 4), 0.5, {{50, 50}, {1, 0}}, {0, 0}, 2.0};
    for (int i = 0; i < 1000; ++i) {
        bar.advance(0.001, 100, 100);
    }
    EXPECT_NEAR(bar.pose.direction.x, std::cos(2.0), 1e-5);
    EXPECT_NEAR(bar.pose.direction.y, std::sin(2.0), 1e-5);
    EXPECT_NEAR(length(bar.pose.direction), 1, 1e-12);
}

TEST(SceneObject, FastestEdgeMovesAndTurns) {
    SceneObject bar{ObjectKind::kBar, Shape::bar(6, 8), 0.5, {{50, 50}, {1, 0}}, {3, 4}, -2.0};
    EXPECT_DOUBLE_EQ(bar.fastestEdge(), 5 + 2 * 5);
}

TEST(SceneObject, KeepsItsBrightnessUnlessItFlickers) {
    const SceneObject disc = discAt(0, 0, 0, 0);
    EXPECT_FLOAT_EQ(disc.brightness(0), 0.5F);
    EXPECT_FLOAT_EQ(disc.brightness(123'456), 0.5F);
}

TEST(SceneObject, FlickersBetweenTheBackgroundAndItsContrast) {
    SceneObject light = discAt(0, 0, 0, 0);
    light.flicker_period_us = 10'000;
    EXPECT_FLOAT_EQ(light.brightness(0), 0);
    EXPECT_FLOAT_EQ(light.brightness(2'500), 0.25F);
    EXPECT_FLOAT_EQ(light.brightness(5'000), 0.5F);
    EXPECT_FLOAT_EQ(light.brightness(7'500), 0.25F);
    EXPECT_FLOAT_EQ(light.brightness(40'000), 0);
    EXPECT_FLOAT_EQ(light.brightness(45'000), 0.5F);
}

}  // namespace
}  // namespace kelvora::simulation
