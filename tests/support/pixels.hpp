// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"

/// \file
/// Feeding the generators that work on points.

namespace kelvora::test {

/// Position and time of an event. Tests of clusters in the plane do not set the time.
struct Pixel {
    int x;
    int y;
    unsigned long long timestamp = 1000;
    int polarity = 1;
};

/// Feeds an event for each pixel to a generator.
template <class Generator>
void feedPixels(Generator& generator, const std::vector<Pixel>& pixels) {
    for (const Pixel& pixel : pixels) {
        const Event2D event(static_cast<unsigned short>(pixel.x),
                            static_cast<unsigned short>(pixel.y),
                            static_cast<unsigned char>(pixel.polarity), pixel.timestamp);
        generator.processEvent(&event);
    }
}

/// The four corners of a box one pixel wide and high.
inline std::vector<Pixel> squareAt(int x, int y) {
    return {{x, y}, {x + 1, y}, {x, y + 1}, {x + 1, y + 1}};
}

template <class Generator>
std::vector<ClusterGeometry> generateFrom(Generator& generator, std::size_t timestamp = 0) {
    std::vector<ClusterGeometry> clusters;
    generator.generateClusters(timestamp, clusters);
    return clusters;
}

/// Feeds some pixels and clusters them.
template <class Generator>
std::vector<ClusterGeometry> clusterPixels(Generator& generator, const std::vector<Pixel>& pixels) {
    feedPixels(generator, pixels);
    return generateFrom(generator);
}

}  // namespace kelvora::test
