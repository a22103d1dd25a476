// SPDX-License-Identifier: MIT
// The same object keeps its number from window to window: one block moves right, one left.
#include <iostream>
#include <kelvora/kelvora.hpp>
#include <vector>

constexpr unsigned long long kWindow = 10'000;  // microseconds

// A block of 20 by 20 pixels, each of which fires once in the window.
void feedBlock(kelvora::GridBasedClusterGenerator& generator, int left, int top,
               unsigned long long start) {
    for (int i = 0; i < 400; ++i) {
        const kelvora::Event2D event(static_cast<unsigned short>(left + i % 20),
                                     static_cast<unsigned short>(top + i / 20), 1,
                                     start + 25ULL * static_cast<unsigned>(i));
        generator.processEvent(&event);
    }
}

int main() {
    // Sensor 640x480, cells 5x5, clusters of 15 to 200 pixels, cells active from 2 pixels on.
    kelvora::GridBasedClusterGenerator generator(640, 480, 5, 5, 200, 15, kelvora::POLARITY_FREE,
                                                 true, 2);
    kelvora::ClusterTracker tracker;
    std::vector<kelvora::ClusterGeometry> clusters;
    for (int window = 0; window < 20; ++window) {
        const unsigned long long start = kWindow * static_cast<unsigned>(window);
        feedBlock(generator, 100 + 5 * window, 100, start);
        feedBlock(generator, 400 - 5 * window, 200, start);
        generator.generateClusters(start + kWindow, clusters);
        tracker.update(clusters);
    }
    const auto tracks = tracker.getTracks();
    for (const kelvora::ClusterTracker::Track& track : tracks) {
        std::cout << "object " << track.id << " at (" << track.box.x << ", " << track.box.y
                  << "), seen " << track.hits << " times, moves " << track.vx
                  << " pixels per second to the right\n";
    }
    const bool as_fed = tracks.size() == 2 && tracks[0].hits == 20 && tracks[1].hits == 20 &&
                        tracks[0].vx > 400 && tracks[1].vx < -400;
    return as_fed ? 0 : 1;
}
