// SPDX-License-Identifier: MIT
#include "scoring/box.hpp"

#include <algorithm>

namespace kelvora::scoring {

double intersectionOverUnion(const Box& a, const Box& b) {
    const double width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    if (!(width > 0.0 && height > 0.0)) {
        return 0.0;
    }
    const double shared = width * height;
    return shared / (a.width * a.height + b.width * b.height - shared);
}

}  // namespace kelvora::scoring
