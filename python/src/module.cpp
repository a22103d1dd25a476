// SPDX-License-Identifier: MIT
#include <pybind11/pybind11.h>

#include "bindings.hpp"
#include "cluster_rows.hpp"
#include "event_records.hpp"
#include "kelvora/version.hpp"

// The macro defines the function that Python looks up.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
PYBIND11_MODULE(_kelvora, module) {
    // Docstrings contain hand-written signatures that are easy to read.
    pybind11::options options;
    options.disable_function_signatures();

    module.attr("__version__") = KELVORA_VERSION;
    module.attr("EVENT_DTYPE") = kelvora::python::eventDtype();
    module.attr("ROW_DTYPE") = kelvora::python::registerClusterRow();
    kelvora::python::bindGridClusterer(module);
    kelvora::python::bindDensityClusterer(module);
    kelvora::python::bindCentroidClusterer(module);
    kelvora::python::bindPointClustering(module);
    kelvora::python::bindTracker(module);
    kelvora::python::bindRecordings(module);
    kelvora::python::bindWriting(module);
    kelvora::python::bindSimulation(module);
    kelvora::python::bindParameters(module);
    kelvora::python::bindClustering(module);
    // The public module name, as shown by help() and messages.
    for (const char* const name :
         {"GridClusterer", "DensityClusterer", "CentroidClusterer", "Tracker", "RecordingReader"}) {
        module.attr(name).attr("__module__") = "kelvora";
    }
}
