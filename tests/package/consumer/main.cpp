// SPDX-License-Identifier: MIT
#include <iostream>
#include <kelvora/kelvora.hpp>
#include <vector>

namespace {

bool isBox(const kelvora::ClusterGeometry& cluster, float x, float y, float width, float height) {
    return cluster.x == x && cluster.y == y && cluster.width == width && cluster.height == height;
}

}  // namespace

int main() {
    kelvora::GridBasedClusterGenerator generator(64, 48, 8, 8, 64, 1, kelvora::POLARITY_FREE, false,
                                                 3);
    const std::vector<kelvora::Event2D> events = {
        {20, 21, 1, 100}, {22, 19, 0, 200}, {60, 40, 1, 250}, {23, 23, 1, 300}};
    for (const kelvora::Event2D& event : events) {
        generator.processEvent(&event);
    }
    std::vector<kelvora::ClusterGeometry> clusters;
    generator.generateClusters(1000, clusters);

    std::cout << "kelvora " << KELVORA_VERSION << '\n';
    for (const kelvora::ClusterGeometry& cluster : clusters) {
        std::cout << cluster.x << ' ' << cluster.y << ' ' << cluster.width << ' ' << cluster.height
                  << '\n';
    }
    // The cell of three events, with its neighbours to the right and below; the fourth event is alone.
    const bool as_expected =
        clusters.size() == 1 && isBox(clusters[0], 16, 16, 16, 16) && clusters[0].timestamp == 1000;
    return as_expected ? 0 : 1;
}
