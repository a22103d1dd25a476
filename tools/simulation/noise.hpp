// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "simulation/random_numbers.hpp"

namespace kelvora::simulation {

/// Position of a pixel.
struct PixelPosition {
    unsigned short x;
    unsigned short y;
};

/// Events at random times, with random polarity, each at a random pixel of a given set.
class Noise {
public:
    /// Noise at all pixels of a sensor.
    /// \param rate_hz events per pixel and second; 0: none
    static Noise background(int width, int height, double rate_hz, RandomNumbers random);

    /// Noise at some random pixels.
    /// \param rate_hz events per hot pixel and second; 0: none
    /// \pre count is at most the number of pixels
    static Noise hotPixels(int count, int width, int height, double rate_hz, RandomNumbers random);

    /// Appends the next events, up to `end_us` (exclusive), in time order.
    void advance(std::uint64_t end_us, std::vector<Event2D>& events);

private:
    Noise(std::vector<PixelPosition> places_, int width_, int height_, double rate_hz,
          RandomNumbers random_);

    PixelPosition drawPlace();

    std::vector<PixelPosition> places;  ///< Empty for all pixels of the sensor.
    std::uint64_t width;
    std::uint64_t height;
    double mean_wait_us;  ///< Between two events of all pixels together; 0 if there are none.
    double next_us = 0;
    RandomNumbers random;
};

}  // namespace kelvora::simulation
