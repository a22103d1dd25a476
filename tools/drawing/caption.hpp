// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <string>

namespace kelvora::drawing {

/// Height of the strips that hold text, pixels.
constexpr int kStripHeight = 26;

/// Formats a caption such as "0.120 - 0.130 s, 3 clusters".
///
/// \param begin,end  Microseconds, preferably relative to the start of the recording. Written with
///     three decimals, or with six where three are not exact.
std::string windowCaption(std::uint64_t begin, std::uint64_t end, std::size_t cluster_count);

/// Writes one line of text into a strip of a picture, in a smaller font if it is too long.
///
/// \param picture  `CV_8UC3`.
/// \param strip    Where to write. Filled with the strip colour first.
/// \returns the width of the text, pixels.
int drawCaption(cv::Mat& picture, const cv::Rect& strip, const std::string& text);

/// The meaning of the colours of events: polarities or clusters.
enum class Legend { Polarity, Clusters };

/// Writes a legend of the colours at the right end of a strip, or nothing if there is no room.
///
/// \param used  Width already used by the caption, pixels.
void drawLegend(cv::Mat& picture, const cv::Rect& strip, int used, Legend legend);

}  // namespace kelvora::drawing
