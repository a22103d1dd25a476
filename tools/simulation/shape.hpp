// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "simulation/geometry.hpp"

namespace kelvora::simulation {

/// An outline around the origin: a disc, or a convex polygon.
class Shape {
public:
    /// \throws std::invalid_argument unless the radius is above 0
    static Shape disc(double radius);

    /// A rectangle with its length along its x axis.
    /// \throws std::invalid_argument unless both sides are above 0
    static Shape bar(double length, double thickness);

    /// \param corners clockwise as seen on the sensor, around the origin
    /// \throws std::invalid_argument if there are fewer than 3, if they do not form a convex
    /// polygon, or if the origin is not inside
    static Shape polygon(std::vector<Point> corners);

    /// Radius, in pixels, of the smallest circle around the origin that contains the shape.
    double radius() const { return outer_radius; }

    /// The box around the shape in this pose.
    Box bounds(const Pose& pose) const;

    /// The pixels that the shape covers at least partly, and possibly a few more.
    Region region(const Pose& pose) const;

    /// Writes the covered fraction of each of the pixels (x_begin, y) to (x_end - 1, y) to
    /// `coverage`.
    ///
    /// The fraction falls linearly from 1 to 0 over one pixel across the outline.
    void coverRow(const Pose& pose, int y, int x_begin, int x_end, float* coverage) const;

private:
    /// The line through a side: normal . p = distance, with the normal pointing outwards.
    struct Side {
        Point normal;
        double distance;
    };

    Shape() = default;

    double outer_radius = 0;
    std::vector<Point> corners;  ///< Empty for a disc.
    std::vector<Side> sides;
};

}  // namespace kelvora::simulation
