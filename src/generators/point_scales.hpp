// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace kelvora {

/// Factors that turn pixels and microseconds into the coordinates of points.
struct PointScales {
    float width;
    float height;
    float time;

    /// The factor of an axis: x, y, time.
    float of(std::size_t axis) const { return axis == 0 ? width : axis == 1 ? height : time; }
};

}  // namespace kelvora
