// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "simulation/scene_object.hpp"

namespace kelvora::simulation {

/// The true position of an object during an interval, for comparison with the clusters of the same
/// interval.
struct GroundTruth {
    std::uint64_t timestamp_us;  ///< End of the interval, exclusive.
    int id;                      ///< From 1, the same in all intervals.
    ObjectKind kind;

    /// The box around the whole area that the object covered during the interval, clipped to the
    /// sensor. A moving edge makes events along its whole path, so this is the box around the
    /// object's events. Pixel i spans from i to i + 1: a box around events has x = lowest x, width
    /// = highest x + 1 - x.
    float x, y, width, height;

    float visibility;  ///< Share of the object neither hidden nor off the sensor, halfway in the
                       ///< interval.
    bool moving;
    float speed;  ///< Of its centre, in pixels per second.
};

/// The column names of `toCsv`, without the end of line.
std::string groundTruthCsvHeader();

/// The fields separated by commas, without the end of line. The same on every machine and in every
/// locale.
std::string toCsv(const GroundTruth& truth);

}  // namespace kelvora::simulation
