// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

#include <vector>

#include "kelvora/events.hpp"

/// \file
/// Events of the library as NumPy arrays.

namespace kelvora::python {

/// Records with the fields x, y, p and t that lie as those of `Event2D`, in 16 bytes.
pybind11::dtype eventDtype();

/// The events, copied.
pybind11::array toArray(const std::vector<Event2D>& events);

}  // namespace kelvora::python
