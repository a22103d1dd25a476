// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

#include <vector>

#include "kelvora/events.hpp"

/// \file
/// Conversion of events to NumPy arrays.

namespace kelvora::python {

/// The 16-byte record type with the fields x, y, p and t, laid out as in `Event2D`.
pybind11::dtype eventDtype();

/// A copy of the events.
pybind11::array toArray(const std::vector<Event2D>& events);

}  // namespace kelvora::python
