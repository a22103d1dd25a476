// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>

namespace kelvora::python {

/// The same fields without gaps. Texts, which C++ holds as bytes padded with zeros, become NumPy
/// strings, which compare with `str`.
pybind11::dtype withStrings(const pybind11::dtype& fields);

}  // namespace kelvora::python
