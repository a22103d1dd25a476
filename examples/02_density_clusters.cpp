// SPDX-License-Identifier: MIT
// Clusters in space and time, and their points: one call per slice of 10 ms, times counted from the
// slice's start.
#include <cstddef>
#include <iostream>
#include <kelvora/kelvora.hpp>
#include <vector>

constexpr unsigned long long kSlice = 10'000;  // microseconds

// Stands in for a camera that counts time from 1970: a block of pixels moves to the right.
std::vector<kelvora::Event2D> eventsOfSlice(unsigned long long start) {
    std::vector<kelvora::Event2D> events;
    for (unsigned short i = 0; i < 400; ++i) {
        const auto x = static_cast<unsigned short>(100 + start % 1'000'000 / 500 + i % 20);
        const auto y = static_cast<unsigned short>(50 + i / 20);
        events.emplace_back(x, y, static_cast<unsigned char>(1), start + 25ULL * i);
    }
    return events;
}

int main() {
    // Sensor 640x480; a pixel and a millisecond weigh the same; events of both polarities;
    // neighbourhoods of radius 5 with 10 points; one thread.
    kelvora::DensityBasedClusterGenerator<3, float> generator(640, 480, 1.0F, 1.0F, 0.001F,
                                                              kelvora::POLARITY_FREE, 5.0, 10, 1);
    std::vector<kelvora::ClusterGeometry> clusters;
    std::vector<std::vector<kelvora::KDPoint<3, float>>> points;  // of all slices' clusters
    const unsigned long long first = 1'700'000'000'000'000;
    for (auto start = first; start < first + 3 * kSlice; start += kSlice) {
        for (const kelvora::Event2D& event : eventsOfSlice(start)) {
            const kelvora::Event2D relative(event.x, event.y, event.polarity,
                                            event.timestamp - start);
            generator.processEvent(&relative);
        }
        generator.generateClusters(start + kSlice, clusters);
        generator.getClusterPoints(points, true);  // appends; in pixels and microseconds
        for (const auto& c : clusters) {
            std::cout << c.width << " x " << c.height << " pixels at (" << c.x << ", " << c.y
                      << "), from " << start + static_cast<unsigned>(c.start_time) << " us, for "
                      << c.duration << " us\n";
        }
    }
    const auto& last = points.back().back().coordinates;
    std::cout << points.back().size() << " points in the last cluster, one of them at (" << last[0]
              << ", " << last[1] << ") after " << last[2] << " us\n";
    return points.size() == 3 && points.back().size() == 400 ? 0 : 1;
}
