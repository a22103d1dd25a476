// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

/// \file
/// What each topic adds to the extension module. The order matters where one uses the types of
/// another.

namespace kelvora::python {

void bindGridClusterer(pybind11::module_& module);
void bindDensityClusterer(pybind11::module_& module);
void bindCentroidClusterer(pybind11::module_& module);
void bindPointClustering(pybind11::module_& module);
void bindTracker(pybind11::module_& module);
void bindRecordings(pybind11::module_& module);
void bindSimulation(pybind11::module_& module);
void bindClustering(pybind11::module_& module);

}  // namespace kelvora::python
