// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

#include <cstdint>
#include <vector>

#include "kelvora/cluster_geometry.hpp"

/// \file
/// Conversion of clusters to NumPy arrays and back.

namespace kelvora::python {

/// One cluster, as `generate` returns it. Times are microseconds, positions and sizes pixels.
struct ClusterRow {
    std::int64_t timestamp;
    float x;
    float y;
    float width;
    float height;
    std::int64_t start_time;  ///< -1 if unknown.
    std::int64_t duration;
};

/// \param origin  Origin of the cluster's start time, microseconds.
ClusterRow toRow(const ClusterGeometry& cluster, std::uint64_t origin);

pybind11::array toArray(const std::vector<ClusterRow>& rows);

/// Reads clusters from the fields timestamp, x, y, width and height, which may have any numeric
/// type.
/// \throws pybind11::type_error, pybind11::value_error  if fields are missing, or if a timestamp is
///     not a whole number of microseconds.
std::vector<ClusterGeometry> toClusters(const pybind11::object& rows_object);

/// Registers the fields of a row with pybind11. Call it once, before creating rows.
void registerClusterRow();

}  // namespace kelvora::python
