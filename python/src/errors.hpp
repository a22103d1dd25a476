// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::python {

/// Converts an error to the corresponding `kelvora.RecordingError`.
pybind11::object toPython(const recording::RecordingError& error);

/// Registers a translator: a `RecordingError` that leaves a function becomes the Python exception.
void translateRecordingErrors();

}  // namespace kelvora::python
