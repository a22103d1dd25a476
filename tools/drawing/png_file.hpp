// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <opencv2/core/mat.hpp>

namespace kelvora::drawing {

/// Writes a picture as a PNG file. An existing file is replaced.
///
/// \param picture  `CV_8UC3` in the order blue, green, red; not empty.
/// \throws std::invalid_argument  for any other matrix.
/// \throws std::runtime_error     "FILE: cannot write the picture (REASON), ...". No partial file
///     remains.
void writePng(const std::filesystem::path& file, const cv::Mat& picture);

/// Reads a PNG file of any kind as `CV_8UC3` in the order blue, green, red.
///
/// \throws std::runtime_error  "FILE: cannot read the picture (REASON), ..."
cv::Mat readPng(const std::filesystem::path& file);

}  // namespace kelvora::drawing
