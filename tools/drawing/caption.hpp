// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <string>

namespace kelvora::drawing {

/// Height of the strips that hold text, pixels.
constexpr int kStripHeight = 26;

/// Such as "0.120 - 0.130 s, 3 clusters".
///
/// \param begin,end  Microseconds, best counted from the start of the recording. Written with three
///     decimals, or with six where three do not say it exactly.
std::string windowCaption(std::uint64_t begin, std::uint64_t end, std::size_t cluster_count);

/// Writes one line of text into a strip of a picture, smaller where it is too long.
///
/// \param picture  `CV_8UC3`.
/// \param strip    Where to write, filled with its own colour first.
/// \returns the width of the text, pixels.
int drawCaption(cv::Mat& picture, const cv::Rect& strip, const std::string& text);

/// What the colours of events tell: their polarity, or their cluster.
enum class Legend { Polarity, Clusters };

/// Writes what the colours mean at the right end of a strip, or nothing if there is no room for it.
///
/// \param used  Width that a caption takes already, pixels.
void drawLegend(cv::Mat& picture, const cv::Rect& strip, int used, Legend legend);

}  // namespace kelvora::drawing
