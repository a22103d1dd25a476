// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

#include <string>
#include <vector>

#include "event_columns.hpp"

namespace kelvora::python {

/// Events as passed by the caller: one structured array, or four arrays. None for missing
/// arguments.
struct EventArguments {
    pybind11::object events;
    pybind11::object x;
    pybind11::object y;
    pybind11::object t;
    pybind11::object p;
    pybind11::object time_unit;
};

/// The caller's events in memory. Must outlive its columns. Creation and destruction need the GIL,
/// reading the columns does not.
struct EventArray {
    EventColumns columns;
    std::vector<pybind11::array> owners;
};

/// Finds the fields by name, never by position. Does not check values.
///
/// Columns are views. Types that columns do not support are converted: float16, long double, and
/// numbers in the other byte order.
///
/// \throws pybind11::type_error, pybind11::value_error  if fields are missing, ambiguous or not
///     numbers, or if the meaning of their numbers is ambiguous.
EventArray mapEvents(const EventArguments& arguments);

/// Converts anything that NumPy accepts to an array, without changing its type.
/// \throws pybind11::type_error  for a masked array, whose mask would be lost.
pybind11::array asArray(const pybind11::object& object, const std::string& name);

}  // namespace kelvora::python
