// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <opencv2/core/matx.hpp>

namespace kelvora::drawing {

/// Colours of the pictures, in the order blue, green, red.
///
/// The colours of events can be distinguished with any common colour blindness. The background is
/// nearly black, which makes single lit pixels easy to see.
inline const cv::Vec3b kBackgroundColour{20, 16, 16};
inline const cv::Vec3b kOnColour{0, 159, 230};       ///< Orange: brighter pixels.
inline const cv::Vec3b kOffColour{233, 180, 86};     ///< Sky blue: darker pixels.
inline const cv::Vec3b kNoiseColour{112, 104, 104};  ///< Grey: events of no cluster.
inline const cv::Vec3b kBoxColour{255, 255, 255};
/// Behind captions, and between the tiles of a sheet.
inline const cv::Vec3b kStripColour{44, 38, 38};
inline const cv::Vec3b kTextColour{235, 230, 230};

/// Number of colours for clusters and tracks.
constexpr std::size_t kIdColourCount = 8;

/// The colour of the cluster or track number `id`: one of eight distinct colours, which repeat.
cv::Vec3b idColour(std::size_t id);

}  // namespace kelvora::drawing
