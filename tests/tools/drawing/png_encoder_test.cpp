// SPDX-License-Identifier: MIT
#include "drawing/png_encoder.hpp"

#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>

#include "tools/drawing/decode_png.hpp"

namespace kelvora::drawing {
namespace {

cv::Mat noise(int width, int height) {
    cv::Mat picture(height, width, CV_8UC3);
    cv::RNG{7}.fill(picture, cv::RNG::UNIFORM, 0, 256);
    return picture;
}

TEST(EncodePng, KeepsEachPixel) {
    const cv::Mat picture = noise(123, 45);
    const cv::Mat decoded = decodePng(encodePng(picture));

    ASSERT_EQ(decoded.size(), picture.size());
    EXPECT_EQ(cv::norm(decoded, picture, cv::NORM_INF), 0.0);
}

TEST(EncodePng, AcceptsAPartOfAMatrixWhoseRowsLieApart) {
    const cv::Mat part = noise(100, 50)(cv::Rect{10, 5, 30, 20});

    EXPECT_EQ(cv::norm(decodePng(encodePng(part)), part, cv::NORM_INF), 0.0);
}

TEST(EncodePng, BeginsWithTheSignatureOfPng) {
    EXPECT_EQ(encodePng(noise(3, 3)).substr(0, 8), "\x89PNG\r\n\x1a\n");
}

TEST(EncodePng, RefusesEmptyAndGreyPictures) {
    EXPECT_THROW(encodePng(cv::Mat{}), std::invalid_argument);
    EXPECT_THROW(encodePng(cv::Mat::zeros(3, 3, CV_8UC1)), std::invalid_argument);
}

}  // namespace
}  // namespace kelvora::drawing
