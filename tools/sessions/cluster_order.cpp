// SPDX-License-Identifier: MIT
#include "sessions/cluster_order.hpp"

#include <cstddef>
#include <utility>
#include <vector>

namespace kelvora::tool {

void sortByFirstEvent(WindowClusters& found) {
    std::vector<int> new_index(found.clusters.size(), kNoCluster);
    WindowClusters sorted;
    for (int& label : found.labels) {
        if (label == kNoCluster) {
            continue;
        }
        int& index = new_index[static_cast<std::size_t>(label)];
        if (index == kNoCluster) {
            index = static_cast<int>(sorted.clusters.size());
            sorted.clusters.push_back(found.clusters[static_cast<std::size_t>(label)]);
            if (!found.centroids.empty()) {
                sorted.centroids.push_back(found.centroids[static_cast<std::size_t>(label)]);
            }
        }
        label = index;
    }
    found.clusters = std::move(sorted.clusters);
    found.centroids = std::move(sorted.centroids);
}

}  // namespace kelvora::tool
