// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core/mat.hpp>
#include <string>

namespace kelvora::drawing {

/// The bytes of a PNG file.
///
/// \param picture  `CV_8UC3` in the order blue, green, red; not empty.
/// \throws std::invalid_argument  for any other matrix.
std::string encodePng(const cv::Mat& picture);

}  // namespace kelvora::drawing
