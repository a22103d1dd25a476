// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <random>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"

namespace kelvora::test {

/// Random numbers that depend only on the seed, on every machine.
using Random = std::mt19937_64;

/// A number in [low, high], the same with every standard library (unlike its distributions).
int randomInt(Random& random, int low, int high);

Event2D positiveEvent(int x, int y);
Event2D negativeEvent(int x, int y);
Event2D eventOfPolarity(int x, int y, int polarity);

/// The same event for any type, with a timestamp and an extra field if the type has them.
template <class Event>
Event makeEvent(int x, int y, int polarity) {
    return Event{static_cast<unsigned short>(x), static_cast<unsigned short>(y),
                 static_cast<unsigned char>(polarity), 1234, 0};
}
template <>
Event2D makeEvent<Event2D>(int x, int y, int polarity);
template <>
Event2DFrequency makeEvent<Event2DFrequency>(int x, int y, int polarity);

/// Events all over the sensor, most of them around a few hot spots, with rare polarity
/// bytes other than 0 and 1.
std::vector<Event2D> randomEvents(Random& random, int sensor_width, int sensor_height,
                                  std::size_t count);

/// Feeds the same event `count` times to a generator.
template <class Event>
void feed(GridBasedClusterGenerator& generator, const Event& event, int count = 1) {
    for (int i = 0; i < count; ++i) {
        generator.processEvent(&event);
    }
}

/// Feeds some events to a generator, one after another.
void feedAll(GridBasedClusterGenerator& generator, const std::vector<Event2D>& events);

std::vector<ClusterGeometry> generate(GridBasedClusterGenerator& generator,
                                      std::size_t timestamp = 0);

}  // namespace kelvora::test
