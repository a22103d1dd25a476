// SPDX-License-Identifier: MIT
#include "drawing/palette.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace kelvora::drawing {
namespace {

// The relative luminance, from 0 to 1, as defined by the web content accessibility guidelines.
double luminance(const cv::Vec3b& colour) {
    const auto linear = [](unsigned char channel) {
        const double value = channel / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.0722 * linear(colour[0]) + 0.7152 * linear(colour[1]) + 0.2126 * linear(colour[2]);
}

double contrast(const cv::Vec3b& first, const cv::Vec3b& second) {
    const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

double distance(const cv::Vec3b& first, const cv::Vec3b& second) {
    return cv::norm(cv::Vec3d{first} - cv::Vec3d{second});
}

TEST(Palette, EventsAndBoxesStandOutAgainstTheBackground) {
    EXPECT_GT(contrast(kOnColour, kBackgroundColour), 7.0);
    EXPECT_GT(contrast(kOffColour, kBackgroundColour), 7.0);
    EXPECT_GT(contrast(kBoxColour, kBackgroundColour), 7.0);
    EXPECT_GT(contrast(kTextColour, kStripColour), 7.0);
}

TEST(Palette, BoxesStandOutAgainstEventsOfBothPolarities) {
    EXPECT_GT(contrast(kBoxColour, kOnColour), 2.0);
    EXPECT_GT(contrast(kBoxColour, kOffColour), 2.0);
}

TEST(Palette, ThePolaritiesDifferMostInBlueWhichEveryCommonColourBlindnessSees) {
    EXPECT_GT(kOffColour[0] - kOnColour[0], 150);
}

TEST(Palette, EightIdsHaveDifferentColoursThatStandOutAgainstTheBackground) {
    for (std::size_t id = 0; id < 8; ++id) {
        EXPECT_GT(contrast(idColour(id), kBackgroundColour), 3.0) << id;
        for (std::size_t other = 0; other < id; ++other) {
            EXPECT_GT(distance(idColour(id), idColour(other)), 60.0) << id << " and " << other;
        }
    }
}

TEST(Palette, TheColoursOfIdsRepeatAfterEight) {
    EXPECT_EQ(idColour(3), idColour(8'000'003));
}

}  // namespace
}  // namespace kelvora::drawing
