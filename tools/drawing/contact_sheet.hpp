// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <string>
#include <vector>

#include "drawing/caption.hpp"
#include "drawing/event_raster.hpp"
#include "drawing/overlay.hpp"

namespace kelvora::drawing {

/// An overview of a recording: thumbnails of evenly spaced windows, made in a single pass.
///
/// The number of windows need not be known in advance. At first every window is kept. When there
/// are twice as many as needed, every other one is dropped, and from then on half as many are kept.
/// Memory is bounded: at most 2 * `tile_count` windows of at most 1920 by 1200 bytes each, plus
/// their overlays.
class ContactSheet {
public:
    /// \param sensor      Size of the sensor, pixels.
    /// \param tile_count  The sheet shows at least this many windows, if there are enough, and less
    ///     than twice as many.
    /// \throws std::invalid_argument  if any argument is below 1.
    explicit ContactSheet(cv::Size sensor, std::size_t tile_count = 12);

    /// Adds the next window. Windows that the sheet does not need cost nothing.
    ///
    /// \param caption  One line below the thumbnail, such as `windowCaption`.
    void add(EventSpan events, const Overlay& overlay, const std::string& caption);

    /// Whether the sheet would keep the next window. If not, the window may be added without its
    /// events.
    bool wantsNext() const { return added % stride == 0; }

    /// Which of the added windows the sheet shows, counted from 0: the multiples of a power of two.
    std::vector<std::uint64_t> shownWindows() const;

    /// The thumbnails row by row, in a picture of about 16:10 and at most 1920 by 1200 pixels.
    ///
    /// \returns `CV_8UC3` in the order blue, green, red; empty if no window was added.
    cv::Mat compose() const;

private:
    struct Tile {
        cv::Mat raster;
        Overlay overlay;
        std::string caption;
    };

    void dropEveryOther();

    cv::Size sensor;
    std::size_t tile_count;
    std::uint64_t added = 0;
    std::uint64_t stride = 1;
    std::vector<Tile> tiles;
    Legend legend = Legend::Polarity;
};

}  // namespace kelvora::drawing
