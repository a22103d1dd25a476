// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

/// \file
/// Functions that register the parts of the extension module. Call a function before the functions
/// that use its types.

namespace kelvora::python {

void bindGridClusterer(pybind11::module_& module);
void bindDensityClusterer(pybind11::module_& module);
void bindCentroidClusterer(pybind11::module_& module);
void bindPointClustering(pybind11::module_& module);
void bindTracker(pybind11::module_& module);
void bindRecordings(pybind11::module_& module);
void bindWriting(pybind11::module_& module);
void bindSimulation(pybind11::module_& module);
void bindParameters(pybind11::module_& module);
void bindClustering(pybind11::module_& module);

}  // namespace kelvora::python
