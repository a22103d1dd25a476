// SPDX-License-Identifier: MIT
#include "simulation/geometry.hpp"

#include <algorithm>
#include <cmath>

namespace kelvora::simulation {

Box unite(const Box& a, const Box& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

Region unite(const Region& a, const Region& b) {
    return {std::min(a.x_begin, b.x_begin), std::min(a.y_begin, b.y_begin),
            std::max(a.x_end, b.x_end), std::max(a.y_end, b.y_end)};
}

Region intersect(const Region& a, const Region& b) {
    return {std::max(a.x_begin, b.x_begin), std::max(a.y_begin, b.y_begin),
            std::min(a.x_end, b.x_end), std::min(a.y_end, b.y_end)};
}

bool isEmpty(const Region& region) {
    return region.x_begin >= region.x_end || region.y_begin >= region.y_end;
}

Point turned(const Point& vector, const Point& cosine_and_sine) {
    const Point& angle = cosine_and_sine;
    return {vector.x * angle.x - vector.y * angle.y, vector.x * angle.y + vector.y * angle.x};
}

Point angleFromHalfTangent(double half_tangent) {
    const double square = half_tangent * half_tangent;
    return {(1 - square) / (1 + square), 2 * half_tangent / (1 + square)};
}

Point normalised(const Point& vector) {
    const double norm = length(vector);
    return {vector.x / norm, vector.y / norm};
}

double length(const Point& vector) {
    return std::sqrt(vector.x * vector.x + vector.y * vector.y);
}

}  // namespace kelvora::simulation
