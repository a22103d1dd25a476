// SPDX-License-Identifier: MIT
#include "simulation/shape.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace kelvora::simulation {

// With registers of higher precision than the type, results would depend on which values the
// compiler spills.
static_assert(FLT_EVAL_METHOD == 0, "the simulator needs arithmetic in the precision of its types");

namespace {

void require(bool condition, const char* message) {
    if (!condition) {
        throw std::invalid_argument(message);
    }
}

// Distance of each pixel's centre from a circle, negative inside. The quotient approximates a
// square root and is accurate near the circle, where it matters.
void distancesFromCircle(double radius, double dx, double dy, int count, float* distance) {
    const auto start = static_cast<float>(dx);
    const auto scale = static_cast<float>(1 / (2 * radius));
    const auto rest = static_cast<float>(dy * dy - radius * radius);
    for (int i = 0; i < count; ++i) {
        const float x = start + static_cast<float>(i);
        distance[i] = (x * x + rest) * scale;
    }
}

// A convex polygon lies inside the lines of all its sides, so the largest distance counts.
void raiseToDistancesFromLine(const Point& normal, double first, int count, float* distance) {
    const auto start = static_cast<float>(first);
    const auto slope = static_cast<float>(normal.x);
    for (int i = 0; i < count; ++i) {
        const float candidate = start + slope * static_cast<float>(i);
        distance[i] = candidate > distance[i] ? candidate : distance[i];
    }
}

void distancesToCoverage(int count, float* values) {
    for (int i = 0; i < count; ++i) {
        const float coverage = 0.5F - values[i];
        const float positive = coverage > 0.0F ? coverage : 0.0F;
        values[i] = positive < 1.0F ? positive : 1.0F;
    }
}

}  // namespace

Shape Shape::disc(double radius) {
    require(radius > 0, "the radius of a disc must be above 0");
    Shape shape;
    shape.outer_radius = radius;
    return shape;
}

Shape Shape::bar(double length, double thickness) {
    require(length > 0 && thickness > 0, "both sides of a bar must be above 0");
    const double x = length / 2;
    const double y = thickness / 2;
    return polygon({{-x, -y}, {x, -y}, {x, y}, {-x, y}});
}

Shape Shape::polygon(std::vector<Point> corners_) {
    require(corners_.size() >= 3, "a polygon needs at least 3 corners");
    Shape shape;
    shape.corners = std::move(corners_);
    for (std::size_t i = 0; i < shape.corners.size(); ++i) {
        const Point& from = shape.corners[i];
        const Point& to = shape.corners[(i + 1) % shape.corners.size()];
        const Point normal = normalised({to.y - from.y, from.x - to.x});
        const double distance = normal.x * from.x + normal.y * from.y;
        require(distance > 0, "the origin must lie inside the polygon, its corners clockwise");
        shape.sides.push_back({normal, distance});
        shape.outer_radius = std::max(shape.outer_radius, simulation::length(from));
    }
    for (const Side& side : shape.sides) {
        for (const Point& corner : shape.corners) {
            const double offset = side.normal.x * corner.x + side.normal.y * corner.y;
            require(offset <= side.distance + 1e-9, "a polygon must be convex");
        }
    }
    return shape;
}

Box Shape::bounds(const Pose& pose) const {
    const Point& centre = pose.centre;
    if (corners.empty()) {
        return {centre.x - outer_radius, centre.y - outer_radius, centre.x + outer_radius,
                centre.y + outer_radius};
    }
    Box box{centre.x, centre.y, centre.x, centre.y};
    for (const Point& corner : corners) {
        const Point offset = turned(corner, pose.direction);
        const Point place{centre.x + offset.x, centre.y + offset.y};
        box = unite(box, {place.x, place.y, place.x, place.y});
    }
    return box;
}

Region Shape::region(const Pose& pose) const {
    // The smooth outline extends half a pixel beyond the sides, and further at sharp corners.
    const Box box = bounds(pose);
    return {static_cast<int>(std::floor(box.left)) - 1, static_cast<int>(std::floor(box.top)) - 1,
            static_cast<int>(std::ceil(box.right)) + 1,
            static_cast<int>(std::ceil(box.bottom)) + 1};
}

void Shape::coverRow(const Pose& pose, int y, int x_begin, int x_end, float* coverage) const {
    const int count = x_end - x_begin;
    const double dx = x_begin + 0.5 - pose.centre.x;
    const double dy = y + 0.5 - pose.centre.y;
    if (corners.empty()) {
        distancesFromCircle(outer_radius, dx, dy, count, coverage);
    } else {
        std::fill_n(coverage, count, -1.0F);
    }
    for (const Side& side : sides) {
        const Point normal = turned(side.normal, pose.direction);
        const double first = normal.x * dx + normal.y * dy - side.distance;
        raiseToDistancesFromLine(normal, first, count, coverage);
    }
    distancesToCoverage(count, coverage);
}

}  // namespace kelvora::simulation
