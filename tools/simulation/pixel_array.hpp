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
/// Each remembers the log brightness of its last event, and emits an event whenever the present one
/// has moved away from it by the pixel's threshold: ON (polarity 1) when brighter, OFF (polarity 0)
/// when darker.
class PixelArray {
public:
    /// \param canvas what the pixels see at the start; it makes no events
    /// \param threshold the change of log brightness that makes an event
    /// \param threshold_spread standard deviation of the pixels' own thresholds, relative to
    /// `threshold`
    PixelArray(const Canvas& canvas, int width_, int height_, double threshold,
               double threshold_spread, RandomNumbers random);

    /// Shows the pixels of a region a new picture. Between the last one and this, from `begin_us`
    /// to `end_us`, brightness went linearly.
    ///
    /// Appends the events, which are unordered but for those of the same pixel. Showing the same
    /// picture twice adds none.
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
