// SPDX-License-Identifier: MIT
#include "simulation/random_scene.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

namespace kelvora::simulation {
namespace {

std::vector<ObjectKind> kindsOf(const Scene& scene) {
    std::vector<ObjectKind> kinds;
    for (const SceneObject& object : scene.objects()) {
        kinds.push_back(object.kind);
    }
    return kinds;
}

SceneOptions optionsOf(std::uint64_t seed) {
    SceneOptions options;
    options.seed = seed;
    return options;
}

TEST(RandomScene, HasTheObjectsItIsAskedFor) {
    SceneOptions options;
    options.lights = 2;
    options.discs = 1;
    options.bars = 0;
    options.polygons = 2;
    const std::vector<ObjectKind> expected{ObjectKind::kLight, ObjectKind::kLight,
                                           ObjectKind::kDisc, ObjectKind::kPolygon,
                                           ObjectKind::kPolygon};
    EXPECT_EQ(kindsOf(randomScene(options)), expected);
}

TEST(RandomScene, HasFewerObjectsOnASmallSensor) {
    SceneOptions options;
    EXPECT_EQ(randomScene(options).objects().size(), 9U);
    options.width = 32;
    options.height = 32;
    EXPECT_EQ(randomScene(options).objects().size(), 4U);
}

TEST(RandomScene, StaysTheSameForAnyNoise) {
    SceneOptions noisy;
    noisy.noise_rate_hz = 5;
    noisy.hot_pixels = 50;
    const Scene a = randomScene(SceneOptions());
    const Scene b = randomScene(noisy);
    for (std::size_t i = 0; i < a.objects().size(); ++i) {
        EXPECT_EQ(a.objects()[i].pose.centre.x, b.objects()[i].pose.centre.x);
    }
}

TEST(RandomScene, MixesSlowAndFastSmallAndBigBrightAndDark) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        std::vector<double> speeds, sizes, contrasts;
        for (const SceneObject& object : randomScene(optionsOf(seed)).objects()) {
            if (object.kind != ObjectKind::kLight) {
                speeds.push_back(length(object.velocity));
                sizes.push_back(object.shape.radius());
                contrasts.push_back(object.contrast);
            }
        }
        EXPECT_LT(*std::min_element(speeds.begin(), speeds.end()), 110);
        EXPECT_GT(*std::max_element(speeds.begin(), speeds.end()), 400);
        EXPECT_LT(*std::max_element(speeds.begin(), speeds.end()), 600);
        EXPECT_LT(*std::min_element(sizes.begin(), sizes.end()), 25);
        EXPECT_GT(*std::max_element(sizes.begin(), sizes.end()), 34);
        EXPECT_LT(*std::min_element(contrasts.begin(), contrasts.end()), -0.5);
        EXPECT_GT(*std::max_element(contrasts.begin(), contrasts.end()), 0.5);
    }
}

TEST(RandomScene, BarsThatDoNotTurnMoveAcrossTheirLengthLeaning) {
    SceneOptions options;
    options.bars = 10;
    for (const SceneObject& object : randomScene(options).objects()) {
        if (object.kind == ObjectKind::kBar && object.turn_rate == 0) {
            const Point heading = normalised(object.velocity);
            const Point& along = object.pose.direction;
            EXPECT_LT(std::abs(heading.x * along.x + heading.y * along.y), 0.6);
        }
    }
}

TEST(RandomScene, ObjectsStayOnTheSensorAndMoveOnAtAllSizes) {
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{
             {16, 16}, {32, 32}, {128, 128}, {16, 1000}, {1280, 720}, {4096, 4096}}) {
        SceneOptions options;
        options.width = width;
        options.height = height;
        Scene scene = randomScene(options);
        for (int i = 0; i < 2000; ++i) {
            scene.advance(1000);
        }
        for (const SceneObject& object : scene.objects()) {
            EXPECT_FALSE(isEmpty(scene.regionOnSensor(object))) << width << 'x' << height;
            EXPECT_TRUE(object.kind == ObjectKind::kLight || length(object.velocity) >= 60);
        }
    }
}

TEST(RandomScene, RefusesOptionsThatAreNotValid) {
    SceneOptions options;
    options.width = 0;
    EXPECT_THROW(randomScene(options), std::invalid_argument);
}

}  // namespace
}  // namespace kelvora::simulation
