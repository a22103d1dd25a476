// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

#include "recording/recording_error.hpp"

namespace kelvora::python {

/// The `kelvora.RecordingError` that says the same.
pybind11::object toPython(const recording::RecordingError& error);

/// From now on, a `RecordingError` that leaves a function becomes the exception of Python.
void translateRecordingErrors();

}  // namespace kelvora::python
