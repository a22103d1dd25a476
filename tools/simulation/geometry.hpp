// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Points and boxes in pixels. Pixel (i, j) covers the square from (i, j) to (i + 1, j + 1), so
/// that a sensor of 640 x 480 spans x from 0 to 640 and y, which points down, from 0 to 480.

namespace kelvora::simulation {

/// A point, or a vector.
struct Point {
    double x;
    double y;
};

/// Where a shape is: its centre, and the direction in which its own x axis points.
struct Pose {
    Point centre;
    Point direction;  ///< Unit vector: cosine and sine of the angle, clockwise as y points down.
};

/// An axis-aligned box.
struct Box {
    double left;
    double top;
    double right;
    double bottom;
};

/// The smallest box around both.
Box unite(const Box& a, const Box& b);

/// A rectangle of whole pixels; the ends are excluded.
struct Region {
    int x_begin;
    int y_begin;
    int x_end;
    int y_end;
};

/// The smallest region around both. \pre neither is empty
Region unite(const Region& a, const Region& b);

/// What two regions have in common; its begin is not below its end on an axis where they are apart.
Region intersect(const Region& a, const Region& b);

/// True if no pixel lies inside.
bool isEmpty(const Region& region);

/// The vector turned by an angle whose cosine and sine are given.
Point turned(const Point& vector, const Point& cosine_and_sine);

/// Cosine and sine of an angle for which `half_tangent` is the tangent of its half.
///
/// Needs a division only, and is exact up to rounding whatever the angle.
Point angleFromHalfTangent(double half_tangent);

/// The vector scaled to length 1. \pre it is not zero
Point normalised(const Point& vector);

/// Length of a vector.
double length(const Point& vector);

}  // namespace kelvora::simulation
