// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core.hpp>

namespace kelvora::drawing {

inline cv::Vec3b colourAt(const cv::Mat& picture, int x, int y) {
    return picture.at<cv::Vec3b>(y, x);
}

/// Number of pixels of exactly this colour.
inline int countOf(const cv::Mat& picture, const cv::Vec3b& colour) {
    cv::Mat matches;
    cv::inRange(picture, cv::Scalar(colour), cv::Scalar(colour), matches);
    return cv::countNonZero(matches);
}

/// Number of light grey pixels: text, which is smoothed and may not reach its full colour anywhere,
/// but not boxes.
inline int countOfText(const cv::Mat& picture) {
    cv::Mat matches;
    cv::inRange(picture, cv::Scalar::all(130), cv::Scalar::all(240), matches);
    return cv::countNonZero(matches);
}

}  // namespace kelvora::drawing
