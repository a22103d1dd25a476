// SPDX-License-Identifier: MIT
#include "drawing/caption.hpp"

#include <gtest/gtest.h>

#include "drawing/palette.hpp"
#include "tools/drawing/picture_probe.hpp"

namespace kelvora::drawing {
namespace {

cv::Mat darkPicture(int width) {
    return {kStripHeight, width, CV_8UC3, cv::Scalar(kBackgroundColour)};
}

TEST(WindowCaption, GivesTheTimeRangeInSecondsAndTheNumberOfClusters) {
    EXPECT_EQ(windowCaption(120'000, 130'000, 3), "0.120 - 0.130 s, 3 clusters");
    EXPECT_EQ(windowCaption(0, 60'000'000, 0), "0.000 - 60.000 s, 0 clusters");
}

TEST(WindowCaption, KnowsTheSingular) {
    EXPECT_EQ(windowCaption(0, 1'000, 1), "0.000 - 0.001 s, 1 cluster");
}

TEST(WindowCaption, HasAsManyDecimalsAsTheTimesNeed) {
    EXPECT_EQ(windowCaption(4'800, 5'600, 2), "0.004800 - 0.005600 s, 2 clusters");
}

TEST(WindowCaption, KeepsTimesSince1970Exact) {
    EXPECT_EQ(windowCaption(1'600'000'000'000'001, 1'600'000'000'010'001, 0),
              "1600000000.000001 - 1600000000.010001 s, 0 clusters");
}

TEST(DrawCaption, FillsTheStripAndNothingElse) {
    cv::Mat picture(60, 200, CV_8UC3, cv::Scalar(kBackgroundColour));
    drawCaption(picture, {20, 10, 150, kStripHeight}, "text");

    cv::Mat around = picture.clone();
    around(cv::Rect{20, 10, 150, kStripHeight}).setTo(cv::Scalar(kBackgroundColour));
    EXPECT_EQ(countOf(around, kBackgroundColour), 60 * 200);
    EXPECT_EQ(countOf(picture(cv::Rect{20, 10, 150, kStripHeight}), kBackgroundColour), 0);
}

TEST(DrawCaption, ShrinksTextThatIsTooLongForTheStrip) {
    const std::string text = "12.340 - 12.350 s, 12 clusters";
    cv::Mat wide = darkPicture(600);
    cv::Mat narrow = darkPicture(180);
    const int natural_width = drawCaption(wide, {0, 0, 600, kStripHeight}, text);

    EXPECT_GT(natural_width, 180);
    EXPECT_LE(drawCaption(narrow, {0, 0, 180, kStripHeight}, text), 180);
}

TEST(DrawCaption, SurvivesStripsThatAreTooSmallForAnyText) {
    cv::Mat picture = darkPicture(1);

    EXPECT_NO_THROW(drawCaption(picture, {0, 0, 1, kStripHeight}, std::string(1000, 'x')));
}

TEST(DrawLegend, ShowsTheColoursOfEventsAndBoxes) {
    cv::Mat picture = darkPicture(400);
    drawLegend(picture, {0, 0, 400, kStripHeight}, 100, Legend::Polarity);

    EXPECT_GE(countOf(picture, kOnColour), 100);
    EXPECT_GE(countOf(picture, kOffColour), 100);
    EXPECT_GE(countOf(picture, kBoxColour), 30);
    EXPECT_EQ(countOf(picture.colRange(0, 100), kBackgroundColour), 100 * kStripHeight);
}

TEST(DrawLegend, GivesWayToACaptionThatNeedsTheRoom) {
    cv::Mat picture = darkPicture(400);
    drawLegend(picture, {0, 0, 400, kStripHeight}, 300, Legend::Polarity);

    EXPECT_EQ(countOf(picture, kBackgroundColour), 400 * kStripHeight);
}

}  // namespace
}  // namespace kelvora::drawing
