// SPDX-License-Identifier: MIT
#include "sessions/cluster_extents.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora::tool {

namespace {

/// Calls `use` with the index of a cluster and an event for each event of a cluster.
template <class Use>
void forEachEvent(const recording::Window& window, const WindowClusters& found, const Use& use) {
    for (std::size_t i = 0; i < found.labels.size(); ++i) {
        if (found.labels[i] != kNoCluster) {
            use(static_cast<std::size_t>(found.labels[i]), window.first[i]);
        }
    }
}

bool isZero(const ClusterGeometry& box) {
    return box.width == 0 && box.height == 0;
}

/// Pixels from the first to the last.
struct PixelBox {
    unsigned left = UINT16_MAX;
    unsigned top = UINT16_MAX;
    unsigned right = 0;
    unsigned bottom = 0;

    void add(const Event2D& event) {
        left = std::min<unsigned>(left, event.x);
        top = std::min<unsigned>(top, event.y);
        right = std::max<unsigned>(right, event.x);
        bottom = std::max<unsigned>(bottom, event.y);
    }
};

}  // namespace

void measureExtents(const recording::Window& window, WindowClusters& found) {
    found.extents.assign(found.clusters.size(), {});
    if (found.labels.empty()) {
        return;
    }
    for (ClusterExtent& extent : found.extents) {
        extent.events = 0;
    }
    forEachEvent(window, found, [&](std::size_t cluster, const Event2D& event) {
        ClusterExtent& extent = found.extents[cluster];
        ++extent.events;
        if (found.clusters[cluster].start_time >= 0) {
            // Events are in time order.
            const auto time = static_cast<std::int64_t>(event.timestamp);
            extent.start_time = extent.start_time < 0 ? time : extent.start_time;
            extent.duration = time - extent.start_time;
        }
    });
}

void replaceZeroBoxes(const recording::Window& window, WindowClusters& found) {
    if (found.labels.empty() ||
        std::none_of(found.clusters.begin(), found.clusters.end(), isZero)) {
        return;
    }
    std::vector<PixelBox> boxes(found.clusters.size());
    forEachEvent(window, found,
                 [&](std::size_t cluster, const Event2D& event) { boxes[cluster].add(event); });
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        ClusterGeometry& cluster = found.clusters[i];
        if (isZero(cluster) && boxes[i].left <= boxes[i].right) {
            cluster.x = static_cast<float>(boxes[i].left);
            cluster.y = static_cast<float>(boxes[i].top);
            cluster.width = static_cast<float>(std::max(1U, boxes[i].right - boxes[i].left));
            cluster.height = static_cast<float>(std::max(1U, boxes[i].bottom - boxes[i].top));
        }
    }
}

}  // namespace kelvora::tool
