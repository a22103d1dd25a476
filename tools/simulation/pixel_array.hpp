// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "simulation/canvas.hpp"
#include "simulation/random_numbers.hpp"

namespace kelvora::simulation {

/// The pixels of an event camera.
///
/// Each pixel stores the log brightness of its last event, and emits an event whenever the current
/// brightness differs from it by the pixel's threshold: ON (polarity 1) when brighter, OFF
/// (polarity 0) when darker.
class PixelArray {
public:
    /// \param canvas the first picture, which makes no events
    /// \param threshold the change of log brightness that causes an event
    /// \param threshold_spread standard deviation of the thresholds of the pixels, relative to
    ///     `threshold`
    PixelArray(const Canvas& canvas, int width_, int height_, double threshold,
               double threshold_spread, RandomNumbers random);

    /// Shows a new picture to the pixels of a region. Brightness changes linearly from the last
    /// picture at `begin_us` to this one at `end_us`.
    ///
    /// Appends the events. Only events of the same pixel are in order. Showing the same picture
    /// twice adds no events.
    void expose(const Canvas& canvas, const Region& region, std::uint64_t begin_us,
                std::uint64_t end_us, std::vector<Event2D>& events);

private:
    struct Pixel {
        float last_seen;  ///< Log brightness of the last picture.
        float reference;  ///< Log brightness of the last event.
        float threshold;
    };

    std::size_t width;
    std::vector<Pixel> pixels;
};

}  // namespace kelvora::simulation
