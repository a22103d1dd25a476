// SPDX-License-Identifier: MIT
#include "support/boxes.hpp"

#include <ostream>
#include <tuple>

namespace kelvora::test {

bool operator==(const Box& a, const Box& b) {
    return std::tie(a.x, a.y, a.width, a.height) == std::tie(b.x, b.y, b.width, b.height);
}

std::ostream& operator<<(std::ostream& out, const Box& box) {
    return out << box.width << 'x' << box.height << " at (" << box.x << ", " << box.y << ')';
}

std::vector<Box> boxesOf(const std::vector<ClusterGeometry>& clusters) {
    std::vector<Box> boxes;
    boxes.reserve(clusters.size());
    for (const ClusterGeometry& cluster : clusters) {
        boxes.push_back({cluster.x, cluster.y, cluster.width, cluster.height});
    }
    return boxes;
}

}  // namespace kelvora::test
