// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

#include <string>
#include <vector>

#include "event_columns.hpp"

namespace kelvora::python {

/// What a caller hands over as events: one structured array, or four arrays. None where not given.
struct EventArguments {
    pybind11::object events;
    pybind11::object x;
    pybind11::object y;
    pybind11::object t;
    pybind11::object p;
    pybind11::object time_unit;
};

/// Events of a caller, found in memory. Lives as long as the columns are used; making and destroying
/// it takes the GIL, reading the columns does not.
struct EventArray {
    EventColumns columns;
    std::vector<pybind11::array> owners;
};

/// Finds the fields by their names, never by position. Values are not looked at.
///
/// Columns are views, but for those of types that the columns do not know, which are converted:
/// float16, long double, and numbers in the other byte order.
///
/// \throws pybind11::type_error, pybind11::value_error  if fields are missing or ambiguous, or not
///     numbers, or if it is not clear what their numbers mean.
EventArray mapEvents(const EventArguments& arguments);

/// An array as it is, of anything that NumPy makes an array of.
/// \throws pybind11::type_error  for a masked array, whose mask would be lost.
pybind11::array asArray(const pybind11::object& object, const std::string& name);

}  // namespace kelvora::python
