// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "simulation/random_numbers.hpp"

namespace kelvora::simulation {

/// Where a pixel is.
struct PixelPosition {
    unsigned short x;
    unsigned short y;
};

/// Events that come at random times, of random polarity, each from a random one of some pixels.
class Noise {
public:
    /// Noise of all pixels of a sensor.
    /// \param rate_hz events per pixel and second; 0: none
    static Noise background(int width, int height, double rate_hz, RandomNumbers random);

    /// Noise of some pixels in random places.
    /// \param rate_hz events per hot pixel and second; 0: none
    /// \pre count is not above the number of pixels
    static Noise hotPixels(int count, int width, int height, double rate_hz, RandomNumbers random);

    /// Appends the events before `end_us` that were not yet given, in the order of time.
    void advance(std::uint64_t end_us, std::vector<Event2D>& events);

private:
    Noise(std::vector<PixelPosition> places_, int width_, int height_, double rate_hz,
          RandomNumbers random_);

    PixelPosition drawPlace();

    std::vector<PixelPosition> places;  ///< Empty: all pixels of the sensor.
    std::uint64_t width;
    std::uint64_t height;
    double mean_wait_us;  ///< Between two events of all pixels together; 0 if there are none.
    double next_us = 0;
    RandomNumbers random;
};

}  // namespace kelvora::simulation
