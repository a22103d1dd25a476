// SPDX-License-Identifier: MIT
// A known number of objects and their centres: three markers flash together for 10 ms.
#include <cstddef>
#include <iostream>
#include <kelvora/kelvora.hpp>
#include <vector>

// Squares of 20 by 20 pixels with their left edges at columns 100, 300 and 500.
std::vector<kelvora::Event2D> flashingMarkers() {
    std::vector<kelvora::Event2D> events;
    for (unsigned short i = 0; i < 400; ++i) {
        for (unsigned short left = 100; left <= 500; left += 200) {
            const auto x = static_cast<unsigned short>(left + i % 20);
            const auto y = static_cast<unsigned short>(left / 2 + i / 20);
            events.emplace_back(x, y, static_cast<unsigned char>(1), 25ULL * i);
        }
    }
    return events;
}

int main() {
    // Sensor 640x480; events of both polarities; 3 clusters; at most 50 iterations, fewer if the
    // sum of the squared distances to the centroids changes by less than 1 square pixel.
    kelvora::CentroidBasedClusterGenerator<2, float> generator(640, 480, kelvora::POLARITY_FREE, 3,
                                                               50, 1.0);
    const std::vector<kelvora::Event2D> events = flashingMarkers();
    generator.processEvents(events.data(), events.size());
    std::vector<kelvora::ClusterGeometry> clusters;
    generator.generateClusters(10'000, clusters);

    std::vector<kelvora::KDPoint<2, float>> centroids;
    std::vector<unsigned long long> sizes;
    generator.getClusterCentroids(centroids);  // in scaled units: pixels, as the scales are 1
    generator.getClusterSizes(sizes);
    // The order differs from run to run: the first centroid is drawn at random.
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        std::cout << sizes[i] << " events around (" << centroids[i].coordinates[0] << ", "
                  << centroids[i].coordinates[1] << "), in a box of " << clusters[i].width << " x "
                  << clusters[i].height << " pixels\n";
    }
    return sizes == std::vector<unsigned long long>{400, 400, 400} ? 0 : 1;
}
