// SPDX-License-Identifier: MIT
// Events in, clusters out.
#include <cstdio>
#include <kelvora/kelvora.hpp>
#include <vector>

int main() {
    // Sensor 640x480, cells 8x8, clusters of 16 to 200 pixels, cells active from 3 pixels on.
    kelvora::GridBasedClusterGenerator generator(640, 480, 8, 8, 200, 16, kelvora::POLARITY_FREE,
                                                 true, 3);
    for (unsigned short i = 0; i < 400; ++i) {
        const unsigned short x = 100 + i % 20, y = 50 + i / 20;
        const kelvora::Event2D event(x, y, 1, 25ULL * i);  // polarity 1, time in microseconds
        generator.processEvent(&event);
    }
    std::vector<kelvora::ClusterGeometry> clusters;
    generator.generateClusters(10'000, clusters);
    for (const auto& c : clusters) {
        std::printf("%g x %g pixels at (%g, %g)\n", c.width, c.height, c.x, c.y);
    }
    return clusters.size() == 1 ? 0 : 1;
}
