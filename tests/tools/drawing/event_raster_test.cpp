// SPDX-License-Identifier: MIT
#include "drawing/event_raster.hpp"

#include <gtest/gtest.h>

#include "drawing/palette.hpp"
#include "tools/drawing/picture_probe.hpp"

namespace kelvora::drawing {
namespace {

using Events = std::vector<Event2D>;

int valueAt(const cv::Mat& raster, int x, int y) {
    return raster.at<unsigned char>(y, x);
}

TEST(Rasterize, ShowsThePolarityOfEachEventAtItsPixel) {
    const cv::Mat raster = rasterize(Events{{2, 1, 1, 10}, {0, 3, 0, 20}}, {5, 4}, {5, 4});

    EXPECT_EQ(raster.size(), cv::Size(5, 4));
    EXPECT_EQ(raster.type(), CV_8UC1);
    EXPECT_EQ(valueAt(raster, 2, 1), kOn);
    EXPECT_EQ(valueAt(raster, 0, 3), kOff);
    EXPECT_EQ(cv::countNonZero(raster), 2);
}

TEST(Rasterize, LetsTheLastEventOfAPixelWin) {
    const cv::Mat raster =
        rasterize(Events{{0, 0, 1, 1}, {0, 0, 0, 2}, {1, 0, 0, 3}, {1, 0, 1, 4}}, {2, 1}, {2, 1});

    EXPECT_EQ(valueAt(raster, 0, 0), kOff);
    EXPECT_EQ(valueAt(raster, 1, 0), kOn);
}

TEST(Rasterize, ShowsAnyPolarityExceptZeroAsOn) {
    EXPECT_EQ(valueAt(rasterize(Events{{0, 0, 255, 0}}, {1, 1}, {1, 1}), 0, 0), kOn);
}

TEST(Rasterize, LeavesOutEventsOutsideOfTheSensor) {
    const Events events{{5, 0, 1, 0}, {0, 4, 1, 0}, {65535, 65535, 0, 0}};

    EXPECT_EQ(cv::countNonZero(rasterize(events, {5, 4}, {5, 4})), 0);
}

TEST(Rasterize, KeepsEverySingleEventWhenItScalesDown) {
    for (unsigned short x = 0; x < 1280; ++x) {
        const auto y = static_cast<unsigned short>(x * 719 / 1279);
        ASSERT_EQ(cv::countNonZero(rasterize(Events{{x, y, 1, 0}}, {1280, 720}, {97, 41})), 1) << x;
    }
}

TEST(Rasterize, TellsNoiseAndClustersApartIfEventsHaveLabels) {
    const Events events{{0, 0, 1, 0}, {1, 0, 1, 0}, {2, 0, 0, 0}, {3, 0, 0, 0}};
    const std::vector<int> labels{-1, 0, 1, static_cast<int>(kIdColourCount)};
    const cv::Mat raster = rasterize({events.data(), 4, labels.data()}, {4, 1}, {4, 1});

    EXPECT_EQ(valueAt(raster, 0, 0), kNoise);
    EXPECT_NE(valueAt(raster, 1, 0), valueAt(raster, 2, 0));
    EXPECT_EQ(valueAt(raster, 1, 0), valueAt(raster, 3, 0));
    EXPECT_EQ(colourRaster(raster, {4, 1}).at<cv::Vec3b>(0, 0), kNoiseColour);
    EXPECT_EQ(colourRaster(raster, {4, 1}).at<cv::Vec3b>(0, 2), idColour(1));
}

TEST(Rasterize, AcceptsNoEvents) {
    EXPECT_EQ(cv::countNonZero(rasterize({nullptr, 0}, {3, 3}, {3, 3})), 0);
}

TEST(ColourRaster, EnlargesPixelsToSquares) {
    const cv::Mat picture = colourRaster(rasterize(Events{{1, 0, 1, 0}}, {2, 2}, {2, 2}), {6, 6});

    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 6; ++x) {
            EXPECT_EQ(colourAt(picture, x, y), x >= 3 && y < 3 ? kOnColour : kBackgroundColour);
        }
    }
}

TEST(ColourRaster, LeavesNoGapsBetweenPixelsThatAreEnlargedUnevenly) {
    cv::Mat raster(3, 7, CV_8UC1, cv::Scalar::all(kOff));
    const cv::Mat picture = colourRaster(raster, {10, 5});

    cv::Mat matches;
    cv::inRange(picture, cv::Scalar(kOffColour), cv::Scalar(kOffColour), matches);
    EXPECT_EQ(cv::countNonZero(matches), 50);
}

TEST(ColourRaster, TurnsSingleEventsIntoDotsOfTwoByTwoPixelsInThumbnails) {
    const cv::Mat picture =
        colourRaster(rasterize(Events{{100, 40, 0, 0}}, {400, 200}, {400, 200}), {40, 20});

    EXPECT_EQ(colourAt(picture, 10, 4), kOffColour);
    EXPECT_EQ(colourAt(picture, 11, 5), kOffColour);
    EXPECT_EQ(colourAt(picture, 9, 4), kBackgroundColour);
    EXPECT_EQ(colourAt(picture, 12, 4), kBackgroundColour);
}

TEST(ColourRaster, KeepsTheDotInTheLastCornerInsideOfTheThumbnail) {
    const cv::Mat picture =
        colourRaster(rasterize(Events{{399, 199, 1, 0}}, {400, 200}, {400, 200}), {40, 20});

    EXPECT_EQ(colourAt(picture, 39, 19), kOnColour);
    EXPECT_EQ(colourAt(picture, 38, 19), kBackgroundColour);
}

}  // namespace
}  // namespace kelvora::drawing
