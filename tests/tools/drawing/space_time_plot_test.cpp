// SPDX-License-Identifier: MIT
#include "drawing/space_time_plot.hpp"

#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <stdexcept>
#include <vector>

#include "drawing/palette.hpp"

namespace kelvora::drawing {
namespace {

const cv::Size kSensor{100, 100};

/// Number of pixels of a colour.
int countOf(const cv::Vec3b& colour, const cv::Mat& picture) {
    cv::Mat matches;
    cv::inRange(picture, cv::Scalar(colour), cv::Scalar(colour), matches);
    return cv::countNonZero(matches);
}

/// Mean column of the pixels of a colour.
double columnOf(const cv::Vec3b& colour, const cv::Mat& picture) {
    double sum = 0;
    int count = 0;
    for (int row = 0; row < picture.rows; ++row) {
        for (int column = 0; column < picture.cols; ++column) {
            if (picture.at<cv::Vec3b>(row, column) == colour) {
                sum += column;
                ++count;
            }
        }
    }
    return sum / count;
}

cv::Mat plot(const std::vector<Event2D>& events, const std::vector<int>& labels) {
    return plotSpaceTime({events.data(), events.size(), labels.data()}, kSensor, 1000, 2000, "");
}

TEST(SpaceTimePlot, DrawsEachEventInTheColourOfItsCluster) {
    const cv::Mat picture = plot({{50, 50, 1, 1500}, {20, 20, 1, 1600}}, {0, 2});
    EXPECT_EQ(countOf(idColour(0), picture), 4);
    EXPECT_EQ(countOf(idColour(2), picture), 4);
}

TEST(SpaceTimePlot, DrawsLaterEventsFurtherToTheRight) {
    const cv::Mat picture = plot({{50, 50, 1, 1100}, {50, 50, 1, 1900}}, {0, 2});
    EXPECT_LT(columnOf(idColour(0), picture) + 400, columnOf(idColour(2), picture));
}

TEST(SpaceTimePlot, KeepsTheCornersOfSpaceAndTimeInThePicture) {
    const cv::Mat picture = plot(
        {{0, 0, 1, 1000}, {99, 0, 1, 1999}, {0, 99, 1, 1999}, {99, 99, 1, 1000}}, {0, 0, 0, 0});
    EXPECT_EQ(countOf(idColour(0), picture), 16);
}

TEST(SpaceTimePlot, LeavesOutEventsOffTheSensorOrTheWindow) {
    const cv::Mat picture = plot(
        {{100, 0, 1, 1500}, {0, 100, 1, 1500}, {50, 50, 1, 999}, {50, 50, 1, 2000}}, {0, 0, 0, 0});
    EXPECT_EQ(countOf(idColour(0), picture), 0);
}

TEST(SpaceTimePlot, RefusesAnEmptySensorOrWindow) {
    const std::vector<Event2D> none;
    EXPECT_THROW(plotSpaceTime(none, {0, 5}, 0, 1, ""), std::invalid_argument);
    EXPECT_THROW(plotSpaceTime(none, kSensor, 1, 1, ""), std::invalid_argument);
}

}  // namespace
}  // namespace kelvora::drawing
