// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

#include <cstdint>
#include <vector>

#include "kelvora/cluster_geometry.hpp"

/// \file
/// Clusters of the library as NumPy arrays, and back.

namespace kelvora::python {

/// One cluster, as `generate` returns it. Times are microseconds, positions and sizes pixels.
struct ClusterRow {
    std::int64_t timestamp;
    float x;
    float y;
    float width;
    float height;
    std::int64_t start_time;  ///< -1 if it is not known.
    std::int64_t duration;
};

/// \param origin  What the start of the cluster counts from, microseconds.
ClusterRow toRow(const ClusterGeometry& cluster, std::uint64_t origin);

pybind11::array toArray(const std::vector<ClusterRow>& rows);

/// Reads clusters by the names of the fields timestamp, x, y, width and height, which may have any
/// numeric type.
/// \throws pybind11::type_error, pybind11::value_error  if fields are missing, or if a timestamp is
///     not a whole number of microseconds.
std::vector<ClusterGeometry> toClusters(const pybind11::object& rows_object);

/// Tells pybind11 the fields of a row. To be called once, before rows are made.
void registerClusterRow();

}  // namespace kelvora::python
