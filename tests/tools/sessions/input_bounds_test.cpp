// SPDX-License-Identifier: MIT
#include "sessions/input_bounds.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "kelvora/recording/recording_error.hpp"
#include "tools/sessions/keyword_wording.hpp"

namespace kelvora::tool {
namespace {

constexpr std::uint64_t kMegabyte = 1'000'000;

class InputBoundsTest : public testing::Test {
protected:
    std::string refusalOf(recording::SensorSize sensor, std::uint64_t bytes = 0) const {
        try {
            InputBounds("a.raw", settings, kKeywordWording).checkSensor(sensor, bytes);
        } catch (const recording::RecordingError& error) {
            return error.what();
        }
        return "";
    }

    std::uint64_t windowEvents(std::uint64_t bytes) const {
        return InputBounds("a.raw", settings, kKeywordWording).windowEvents(bytes);
    }

    Settings settings;
};

TEST_F(InputBoundsTest, AllowSensorsOfUsualSize) {
    settings.grid.cell_width = 1;
    settings.grid.cell_height = 1;
    settings.windows.polarity = Polarity::Separate;
    EXPECT_EQ(refusalOf({640, 480}), "");
    EXPECT_EQ(refusalOf({2560, 1440}), "");
}

TEST_F(InputBoundsTest, RefuseTheGridOfAHugeSensor) {
    EXPECT_EQ(refusalOf({65'535, 65'535}),
              "a.raw: has a sensor of 65535 x 65535 pixels, whose grid takes 4811 MB of memory, "
              "check the size, or allow more memory with max_memory");
    EXPECT_EQ(refusalOf({65'535, 300}), "");
}

TEST_F(InputBoundsTest, CountTheCellsOfTheGrid) {
    EXPECT_EQ(refusalOf({5000, 5000}), "");
    settings.grid.cell_width = 1;
    settings.grid.cell_height = 1;
    EXPECT_NE(refusalOf({5000, 5000}), "");
}

TEST_F(InputBoundsTest, AllowALargeSensorInALargeRecording) {
    EXPECT_NE(refusalOf({10'000, 10'000}, kMegabyte), "");
    EXPECT_EQ(refusalOf({10'000, 10'000}, 10 * kMegabyte), "");
}

TEST_F(InputBoundsTest, AllowASensorThatFitsIntoTheGivenMemory) {
    settings.windows.max_memory = 4800;
    EXPECT_NE(refusalOf({65'535, 65'535}), "");
    settings.windows.max_memory = 4820;
    EXPECT_EQ(refusalOf({65'535, 65'535}), "");
    settings.windows.max_memory = 1;
    EXPECT_NE(refusalOf({1280, 720}), "");
}

TEST_F(InputBoundsTest, AllowAnySensorWithoutAGrid) {
    for (const char* const method : {"density", "centroid"}) {
        settings.method = method;
        EXPECT_EQ(refusalOf({65'535, 65'535}), "");
    }
}

TEST_F(InputBoundsTest, AllowMoreEventsInAWindowOfALargerRecording) {
    EXPECT_GE(windowEvents(0), 500'000U);
    EXPECT_NEAR(static_cast<double>(windowEvents(10 * kMegabyte)),
                static_cast<double>(windowEvents(0)) * 352 / 32, 20.0);
}

TEST_F(InputBoundsTest, AllowFewerEventsIfEachTakesMoreMemory) {
    const auto of_grid = windowEvents(0);
    settings.method = "density";
    const auto in_the_plane = windowEvents(0);
    settings.point.dim = 3;
    const auto in_space = windowEvents(0);
    settings.point.precision = Precision::Double;
    const auto with_doubles = windowEvents(0);
    EXPECT_GT(of_grid, in_the_plane);
    EXPECT_GT(in_the_plane, in_space);
    EXPECT_GT(in_space, with_doubles);
    EXPECT_GE(with_doubles, 100'000U);
}

TEST_F(InputBoundsTest, AllowAsManyEventsAsFitIntoTheGivenMemoryOrAreGiven) {
    settings.windows.max_memory = 320;
    EXPECT_NEAR(static_cast<double>(windowEvents(10 * kMegabyte)), 320e6 / 48, 1.0);
    settings.windows.max_window_events = 12;
    EXPECT_EQ(windowEvents(10 * kMegabyte), 12U);
}

TEST_F(InputBoundsTest, NameWhatAllowsFullerWindows) {
    try {
        InputBounds("a.raw", settings, kKeywordWording).refuseWindow(1000, 20'000);
        FAIL() << "nothing was thrown";
    } catch (const recording::RecordingError& error) {
        EXPECT_STREQ(error.what(),
                     "a.raw: has more than 1000 events in a window, event at 20000 us, shorten "
                     "the windows, or allow more events with max_window_events");
    }
}

}  // namespace
}  // namespace kelvora::tool
