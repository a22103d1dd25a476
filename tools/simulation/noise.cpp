// SPDX-License-Identifier: MIT
#include "simulation/noise.hpp"

#include <algorithm>
#include <utility>

namespace kelvora::simulation {

namespace {

PixelPosition drawFrom(std::uint64_t width, std::uint64_t height, RandomNumbers& random) {
    const std::uint64_t index = random.below(width * height);
    return {static_cast<unsigned short>(index % width), static_cast<unsigned short>(index / width)};
}

bool contains(const std::vector<PixelPosition>& places, const PixelPosition& place) {
    return std::any_of(places.begin(), places.end(), [&](const PixelPosition& other) {
        return other.x == place.x && other.y == place.y;
    });
}

}  // namespace

Noise Noise::background(int width, int height, double rate_hz, RandomNumbers random) {
    return {{}, width, height, rate_hz * width * height, random};
}

Noise Noise::hotPixels(int count, int width, int height, double rate_hz, RandomNumbers random) {
    std::vector<PixelPosition> places;
    while (places.size() < static_cast<std::size_t>(count)) {
        const PixelPosition place =
            drawFrom(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height), random);
        if (!contains(places, place)) {
            places.push_back(place);
        }
    }
    return {std::move(places), width, height, rate_hz * count, random};
}

Noise::Noise(std::vector<PixelPosition> places_, int width_, int height_, double rate_hz,
             RandomNumbers random_)
    : places(std::move(places_)),
      width(static_cast<std::uint64_t>(width_)),
      height(static_cast<std::uint64_t>(height_)),
      mean_wait_us(rate_hz > 0 ? 1e6 / rate_hz : 0),
      random(random_) {
    next_us = mean_wait_us * random.exponential();
}

void Noise::advance(std::uint64_t end_us, std::vector<Event2D>& events) {
    if (mean_wait_us == 0) {
        return;
    }
    while (next_us < static_cast<double>(end_us)) {
        const PixelPosition place = drawPlace();
        events.emplace_back(place.x, place.y, static_cast<unsigned char>(random.coin() ? 1 : 0),
                            static_cast<std::uint64_t>(next_us));
        next_us += mean_wait_us * random.exponential();
    }
}

PixelPosition Noise::drawPlace() {
    if (places.empty()) {
        return drawFrom(width, height, random);
    }
    return places[random.below(places.size())];
}

}  // namespace kelvora::simulation
