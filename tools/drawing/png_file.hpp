// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <opencv2/core/mat.hpp>
#include <string>

#include "kelvora/recording/event_writer.hpp"

namespace kelvora::drawing {

/// The bytes of a PNG file.
///
/// \param picture  `CV_8UC3` in the order blue, green, red; not empty.
/// \throws std::invalid_argument  for any other matrix.
std::string encodePng(const cv::Mat& picture);

/// Writes a picture as a PNG file. The parameters and errors of `encodePng` apply, too.
///
/// \throws recording::RecordingError  if the file cannot be written.
void writePng(const std::filesystem::path& path, const cv::Mat& picture,
              const recording::WriteOptions& options = {});

/// Reads a PNG file of any kind as `CV_8UC3` in the order blue, green, red.
///
/// \throws std::runtime_error  "FILE: cannot read the picture (REASON), ..."
cv::Mat readPng(const std::filesystem::path& file);

}  // namespace kelvora::drawing
