// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <vector>

#include "kelvora/cluster_geometry.hpp"

namespace kelvora::test {

/// The box of a cluster in the image plane, comparable and printable.
struct Box {
    float x;
    float y;
    float width;
    float height;
};

bool operator==(const Box& a, const Box& b);
std::ostream& operator<<(std::ostream& out, const Box& box);

std::vector<Box> boxesOf(const std::vector<ClusterGeometry>& clusters);

}  // namespace kelvora::test
