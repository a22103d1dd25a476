// SPDX-License-Identifier: MIT
#include "simulation/pixel_array.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvora::simulation {
namespace {

constexpr Region kSensor{0, 0, 20, 10};

// A uniform picture.
Canvas uniformCanvas(double level) {
    Canvas canvas(20, 10);
    canvas.paint(
        Scene(20, 10, {{ObjectKind::kDisc, Shape::disc(100), level, {{10, 5}, {1, 0}}, {}}}));
    return canvas;
}

PixelArray equalPixels(double threshold) {
    return {uniformCanvas(0), 20, 10, threshold, 0, RandomNumbers(1, 1)};
}

TEST(PixelArray, AStillPictureMakesNoEvents) {
    PixelArray pixels = equalPixels(0.2);
    std::vector<Event2D> events;
    pixels.expose(uniformCanvas(0), kSensor, 0, 1000, events);
    EXPECT_TRUE(events.empty());
}

TEST(PixelArray, BrighteningMakesOnEventsAndDarkeningOffEvents) {
    PixelArray pixels = equalPixels(0.2);
    std::vector<Event2D> on;
    pixels.expose(uniformCanvas(1), kSensor, 0, 1000, on);
    EXPECT_GE(on.size(), 4U * 200U);
    EXPECT_LE(on.size(), 6U * 200U);
    EXPECT_TRUE(
        std::all_of(on.begin(), on.end(), [](const Event2D& e) { return e.polarity == 1; }));

    std::vector<Event2D> off;
    pixels.expose(uniformCanvas(-0.5), kSensor, 1000, 2000, off);
    EXPECT_GE(off.size(), 6U * 200U);
    EXPECT_TRUE(
        std::all_of(off.begin(), off.end(), [](const Event2D& e) { return e.polarity == 0; }));
}

TEST(PixelArray, SmallChangesAddUpUntilTheThresholdIsCrossed) {
    PixelArray pixels = equalPixels(0.2);
    std::vector<Event2D> events;
    for (int step = 1; step <= 20; ++step) {
        const auto begin_us = static_cast<std::uint64_t>(step) * 100;
        pixels.expose(uniformCanvas(step * 0.05), kSensor, begin_us, begin_us + 100, events);
    }
    // Pixels start up to half a threshold above or below: four events for one half of them, five
    // for the other.
    EXPECT_NEAR(static_cast<double>(events.size()), 4.5 * 200, 40);
}

TEST(PixelArray, TimesOfCrossingsAreInterpolated) {
    PixelArray pixels = equalPixels(0.25);
    std::vector<Event2D> events;
    pixels.expose(uniformCanvas(1), {4, 4, 5, 5}, 1000, 2000, events);
    ASSERT_GE(events.size(), 3U);
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_GE(events[i].timestamp, 1000U);
        EXPECT_LT(events[i].timestamp, 2000U);
        if (i > 0) {
            EXPECT_NEAR(static_cast<double>(events[i].timestamp - events[i - 1].timestamp), 250, 1);
        }
    }
}

TEST(PixelArray, ShowingTheSamePictureTwiceAddsNothing) {
    PixelArray pixels = equalPixels(0.2);
    std::vector<Event2D> events;
    pixels.expose(uniformCanvas(1), kSensor, 0, 1000, events);
    const std::size_t once = events.size();
    pixels.expose(uniformCanvas(1), kSensor, 0, 1000, events);
    EXPECT_EQ(events.size(), once);
}

TEST(PixelArray, OnlyPixelsOfTheRegionSeeThePicture) {
    PixelArray pixels = equalPixels(0.2);
    std::vector<Event2D> events;
    pixels.expose(uniformCanvas(1), {3, 2, 6, 4}, 0, 1000, events);
    ASSERT_FALSE(events.empty());
    for (const Event2D& event : events) {
        EXPECT_TRUE(event.x >= 3 && event.x < 6 && event.y >= 2 && event.y < 4);
    }
}

}  // namespace
}  // namespace kelvora::simulation
