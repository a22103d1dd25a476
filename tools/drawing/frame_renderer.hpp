// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core/mat.hpp>
#include <string>

#include "drawing/event_raster.hpp"
#include "drawing/overlay.hpp"

namespace kelvora::drawing {

/// Draws the events and clusters of one window of time.
///
/// Each event lights its pixel in the colour of its polarity; of several events at a pixel the last
/// one wins. Clusters are outlined around, not over, the area they cover.
class FrameRenderer {
public:
    /// Pictures that are easy to look at: the pixels of the sensor, each enlarged to a square of n
    /// by n so that the shorter side has about 480 pixels or more. Sensors of more than 4096 pixels
    /// are scaled down.
    ///
    /// \param sensor  Size of the sensor, pixels.
    /// \throws std::invalid_argument  if a side is below 1.
    explicit FrameRenderer(cv::Size sensor);

    /// Pictures of a given size without captions, such as thumbnails.
    ///
    /// \param picture  Size of the drawn sensor area, pixels; the aspect ratio is up to the caller.
    /// \throws std::invalid_argument  if a side of either is below 1.
    FrameRenderer(cv::Size sensor, cv::Size picture);

    /// Size of the drawn sensor area, pixels. A caption adds a strip of `kStripHeight` below it.
    cv::Size pictureSize() const { return picture; }

    /// \param events    Those outside of the sensor are left out.
    /// \param caption   One line below the picture, or empty for none.
    /// \returns `CV_8UC3` in the order blue, green, red.
    cv::Mat render(EventSpan events, const Overlay& overlay, const std::string& caption = "") const;

    /// The same without the events, as made by `rasterize`.
    ///
    /// \param raster  Shows the whole sensor, in any resolution.
    cv::Mat render(const cv::Mat& raster, const Overlay& overlay) const;

private:
    cv::Size sensor;
    cv::Size picture;
};

}  // namespace kelvora::drawing
