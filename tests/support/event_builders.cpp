// SPDX-License-Identifier: MIT
#include "support/event_builders.hpp"

#include <algorithm>
#include <array>

namespace kelvora::test {

namespace {

struct Pixel {
    int x;
    int y;
};

int randomPolarity(Random& random) {
    constexpr std::array<int, 5> kRare = {2, 3, 7, 128, 255};
    if (randomInt(random, 0, 19) == 0) {
        return kRare[static_cast<std::size_t>(randomInt(random, 0, 4))];
    }
    return randomInt(random, 0, 1);
}

int randomNear(Random& random, int center, int sensor_size) {
    return std::clamp(center + randomInt(random, -3, 3), 0, sensor_size - 1);
}

}  // namespace

int randomInt(Random& random, int low, int high) {
    const auto range = static_cast<Random::result_type>(high - low) + 1;
    return low + static_cast<int>(random() % range);
}

Event2D positiveEvent(int x, int y) {
    return eventOfPolarity(x, y, 1);
}

Event2D negativeEvent(int x, int y) {
    return eventOfPolarity(x, y, 0);
}

Event2D eventOfPolarity(int x, int y, int polarity) {
    return {static_cast<unsigned short>(x), static_cast<unsigned short>(y),
            static_cast<unsigned char>(polarity), 1234};
}

template <>
Event2D makeEvent<Event2D>(int x, int y, int polarity) {
    return eventOfPolarity(x, y, polarity);
}

template <>
Event2DFrequency makeEvent<Event2DFrequency>(int x, int y, int polarity) {
    return {static_cast<unsigned short>(x), static_cast<unsigned short>(y), polarity != 0, 1234,
            50.0F};
}

std::vector<Event2D> randomEvents(Random& random, int sensor_width, int sensor_height,
                                  std::size_t count) {
    std::vector<Pixel> hot_spots(static_cast<std::size_t>(randomInt(random, 1, 12)));
    for (Pixel& spot : hot_spots) {
        spot = {randomInt(random, 0, sensor_width - 1), randomInt(random, 0, sensor_height - 1)};
    }
    std::vector<Event2D> events;
    events.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        Pixel pixel = {randomInt(random, 0, sensor_width - 1),
                       randomInt(random, 0, sensor_height - 1)};
        if (randomInt(random, 0, 7) != 0) {
            const Pixel& spot = hot_spots[random() % hot_spots.size()];
            pixel = {randomNear(random, spot.x, sensor_width),
                     randomNear(random, spot.y, sensor_height)};
        }
        events.push_back(eventOfPolarity(pixel.x, pixel.y, randomPolarity(random)));
    }
    return events;
}

void feedAll(GridBasedClusterGenerator& generator, const std::vector<Event2D>& events) {
    for (const Event2D& event : events) {
        generator.processEvent(&event);
    }
}

std::vector<ClusterGeometry> generate(GridBasedClusterGenerator& generator, std::size_t timestamp) {
    std::vector<ClusterGeometry> clusters;
    generator.generateClusters(timestamp, clusters);
    return clusters;
}

}  // namespace kelvora::test
