// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core/mat.hpp>
#include <string>

#include "drawing/event_raster.hpp"
#include "drawing/overlay.hpp"

namespace kelvora::drawing {

/// Draws the events and clusters of one window of time.
///
/// Each event lights its pixel in the colour of its polarity. If a pixel has several events, the
/// last one wins. Outlines of clusters are drawn around the covered area, not over it.
class FrameRenderer {
public:
    /// Pictures of a convenient size: each sensor pixel is enlarged to n by n, so that the shorter
    /// side has about 480 pixels or more. Sensors larger than 4096 pixels are scaled down.
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

    /// \param events    Events outside the sensor are omitted.
    /// \param caption   One line below the picture, or empty for none.
    /// \returns `CV_8UC3` in the order blue, green, red.
    cv::Mat render(EventSpan events, const Overlay& overlay, const std::string& caption = "") const;

    /// The same for events that were already drawn by `rasterize`.
    ///
    /// \param raster  The whole sensor, at any resolution.
    cv::Mat render(const cv::Mat& raster, const Overlay& overlay) const;

private:
    cv::Size sensor;
    cv::Size picture;
};

}  // namespace kelvora::drawing
