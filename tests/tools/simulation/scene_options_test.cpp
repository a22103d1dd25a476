// SPDX-License-Identifier: MIT
#include "simulation/scene_options.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kelvora::simulation {
namespace {

std::string complaintAbout(const std::function<void(SceneOptions&)>& change) {
    SceneOptions options;
    change(options);
    try {
        options.validate();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

TEST(SceneOptions, DefaultsAreValid) {
    EXPECT_NO_THROW(SceneOptions().validate());
}

TEST(SceneOptions, ComplaintNamesTheValueAndItsRange) {
    EXPECT_EQ(complaintAbout([](auto& o) { o.width = 15; }),
              "width is 15, but must be from 16 to 4096");
    EXPECT_EQ(complaintAbout([](auto& o) { o.noise_rate_hz = -0.5; }),
              "noise_rate_hz is -0.5, but must be from 0 to 100");
}

TEST(SceneOptions, EveryValueOutOfItsRangeIsRefused) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<std::pair<std::string, std::function<void(SceneOptions&)>>> changes = {
        {"width", [](auto& o) { o.width = 4097; }},
        {"height", [](auto& o) { o.height = -480; }},
        {"duration_us", [](auto& o) { o.duration_us = 0; }},
        {"duration_us", [](auto& o) { o.duration_us = UINT64_MAX; }},
        {"discs", [](auto& o) { o.discs = -1; }},
        {"bars", [](auto& o) { o.bars = 101; }},
        {"polygons", [](auto& o) { o.polygons = -1; }},
        {"lights", [](auto& o) { o.lights = 101; }},
        {"light_frequency_hz", [](auto& o) { o.light_frequency_hz = 0; }},
        {"noise_rate_hz", [=](auto& o) { o.noise_rate_hz = nan; }},
        {"hot_pixels", [](auto& o) { o.hot_pixels = 1001; }},
        {"hot_pixel_rate_hz", [](auto& o) { o.hot_pixel_rate_hz = 1e6; }},
        {"contrast_threshold", [](auto& o) { o.contrast_threshold = 0; }},
        {"contrast_threshold", [=](auto& o) { o.contrast_threshold = nan; }},
        {"threshold_spread", [](auto& o) { o.threshold_spread = 0.3; }},
        {"truth_interval_us", [](auto& o) { o.truth_interval_us = 99; }},
    };
    for (const auto& [name, change] : changes) {
        EXPECT_THAT(complaintAbout(change), testing::StartsWith(name + " is "));
    }
}

TEST(SceneOptions, ThereCannotBeMoreHotPixelsThanPixels) {
    const auto change = [](SceneOptions& options) {
        options.width = 16;
        options.height = 16;
        options.hot_pixels = 257;
    };
    EXPECT_EQ(complaintAbout(change), "hot_pixels is 257, but must be from 0 to 256");
}

}  // namespace
}  // namespace kelvora::simulation
