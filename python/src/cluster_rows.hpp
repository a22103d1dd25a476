// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "sessions/cluster_rows.hpp"

/// \file
/// Conversion of clusters to NumPy arrays and back.

namespace kelvora::python {

/// An array of clusters, without their tracks.
pybind11::array toArray(const std::vector<tool::ClusterRow>& rows);

/// Reads clusters from the fields timestamp, x, y, width and height, which may have any numeric
/// type.
/// \throws pybind11::type_error, pybind11::value_error  if fields are missing, or if a timestamp is
///     not a whole number of microseconds.
std::vector<ClusterGeometry> toClusters(const pybind11::object& rows_object);

/// Registers the fields of a row with pybind11. Call it once, before creating rows.
///
/// \return The type of a row.
pybind11::dtype registerClusterRow();

}  // namespace kelvora::python
