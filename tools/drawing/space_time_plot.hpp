// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <string>

#include "drawing/event_raster.hpp"

namespace kelvora::drawing {

/// Draws the events of one window as points in space and time. The time axis points right, columns
/// point away from the viewer, and rows point down.
///
/// \param events  Events outside the sensor or the window are omitted.
/// \param sensor  Size of the sensor, pixels.
/// \param start,end  The window, microseconds.
/// \param caption  One line below the picture.
/// \returns `CV_8UC3` in the order blue, green, red.
/// \throws std::invalid_argument  if the sensor or the window is empty.
cv::Mat plotSpaceTime(EventSpan events, cv::Size sensor, std::uint64_t start, std::uint64_t end,
                      const std::string& caption);

}  // namespace kelvora::drawing
