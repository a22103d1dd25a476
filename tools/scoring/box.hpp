// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora::scoring {

/// A rectangle in pixels; neither width nor height is negative.
struct Box {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
};

/// Intersection over union of two boxes: from 0 (disjoint) to 1 (equal). 0 if one of them has no
/// area.
double intersectionOverUnion(const Box& a, const Box& b);

}  // namespace kelvora::scoring
