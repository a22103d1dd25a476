// SPDX-License-Identifier: MIT
#include "simulation/scene.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kelvora::simulation {
namespace {

SceneObject discAt(double x, double y, double speed) {
    return {ObjectKind::kDisc, Shape::disc(10), 0.5, {{x, y}, {1, 0}}, {speed, 0}};
}

TEST(Scene, MovesItsObjectsAndItsTime) {
    Scene scene(200, 100, {discAt(50, 50, 100), discAt(90, 50, -100)});
    scene.advance(100'000);
    scene.advance(100'000);
    EXPECT_EQ(scene.timeUs(), 200'000U);
    EXPECT_DOUBLE_EQ(scene.objects()[0].pose.centre.x, 70);
    EXPECT_DOUBLE_EQ(scene.objects()[1].pose.centre.x, 70);
}

TEST(Scene, StepsLetTheFastestEdgeMoveHalfAPixel) {
    const Scene scene(200, 100, {discAt(50, 50, 100), discAt(50, 50, 1000)});
    EXPECT_DOUBLE_EQ(scene.longestStepUs(), 500);
}

TEST(Scene, StepsFollowTheFlickerOfALight) {
    SceneObject light = discAt(50, 50, 0);
    light.flicker_period_us = 8'000;
    EXPECT_DOUBLE_EQ(Scene(200, 100, {light}).longestStepUs(), 500);
}

TEST(Scene, RegionsAreCutAtTheBordersOfTheSensor) {
    const Scene scene(200, 100, {discAt(0, 95, 0), discAt(-30, 50, 0)});
    const Region region = scene.regionOnSensor(scene.objects()[0]);
    EXPECT_EQ(region.x_begin, 0);
    EXPECT_EQ(region.x_end, 11);
    EXPECT_EQ(region.y_begin, 84);
    EXPECT_EQ(region.y_end, 100);
    EXPECT_TRUE(isEmpty(scene.regionOnSensor(scene.objects()[1])));
}

TEST(Scene, RefusesSensorsThatEventsCannotAddress) {
    EXPECT_THROW(Scene(0, 100, {}), std::invalid_argument);
    EXPECT_THROW(Scene(100, 65'536, {}), std::invalid_argument);
}

}  // namespace
}  // namespace kelvora::simulation
