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

/// Position and orientation of a shape: its centre, and the direction of its x axis.
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

/// The intersection of two regions. On an axis where they are disjoint, begin >= end.
Region intersect(const Region& a, const Region& b);

/// True if it contains no pixel.
bool isEmpty(const Region& region);

/// Rotates a vector by an angle given by its cosine and sine.
Point turned(const Point& vector, const Point& cosine_and_sine);

/// Cosine and sine of an angle, given the tangent of half the angle.
///
/// Needs only a division, and is exact up to rounding for every angle.
Point angleFromHalfTangent(double half_tangent);

/// Scales a vector to length 1. \pre it is not zero
Point normalised(const Point& vector);

/// Length of a vector.
double length(const Point& vector);

}  // namespace kelvora::simulation
