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

/// Area that two boxes share, relative to the area that they cover together: from 0 (apart) to 1
/// (the same). 0 if one of them has no area.
double intersectionOverUnion(const Box& a, const Box& b);

}  // namespace kelvora::scoring
