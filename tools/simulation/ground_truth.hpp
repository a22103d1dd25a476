// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "simulation/scene_object.hpp"

namespace kelvora::simulation {

/// Where an object was during an interval of time, to compare clusters of that interval's events
/// with.
struct GroundTruth {
    std::uint64_t timestamp_us;  ///< End of the interval; its own events belong to the next one.
    int id;                      ///< From 1, of the same object throughout.
    ObjectKind kind;

    /// The box around all places that the object covered during the interval, clipped to the
    /// sensor. An edge makes events all along its way, so that the box around them is this one
    /// rather than that of a moment. Pixel i spans from i to i + 1: the box of events has x =
    /// lowest x, width = highest x + 1 - x.
    float x, y, width, height;

    float visibility;  ///< Share of the object neither hidden nor off the sensor, halfway in the
                       ///< interval.
    bool moving;
    float speed;  ///< Of its centre, in pixels per second.
};

/// The names of the columns of `toCsv`, without the end of line.
std::string groundTruthCsvHeader();

/// The fields, separated by commas and without the end of line; the same on every machine and in
/// every locale.
std::string toCsv(const GroundTruth& truth);

}  // namespace kelvora::simulation
