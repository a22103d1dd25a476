// SPDX-License-Identifier: MIT
#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <string>

#include "bindings.hpp"
#include "cluster_points.hpp"
#include "clusterer.hpp"
#include "ownership.hpp"
#include "settings.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr const char* kDoc =
    R"(DensityClusterer(width, height, *, eps=10.0, min_pts=10, jobs=1, dim=2, scale_x=1.0, scale_y=1.0, us_per_pixel=1000.0, scale_time=None, capacity=None, time_length_us=None, precision='float', keep_zero_boxes=False, polarity='all')

Find clusters of any shape where events are dense, by DBSCAN. Other events are noise.

Call `generate` once per time window: otherwise, events of a dense stream are never discarded. The
defaults suit windows of about 10 ms.

Parameters
----------
width, height : int
    Size of the sensor, pixels.
eps : float
    Radius of a neighbourhood, scaled units: pixels, unless scales are given. Events at exactly
    this distance lie outside.
min_pts : int
    Number of events that make a neighbourhood dense.
jobs : int
    Number of threads. 0: depends on the number of events, -1: one per processor. With two or
    more, a core point needs one more neighbour, and border points join clusters, so results
    differ from one thread.
)";

constexpr const char* kExamplesDoc = R"(
Examples
--------
>>> import numpy as np
>>> import kelvora
>>> t = np.arange(40)
>>> clusterer = kelvora.DensityClusterer(640, 480, dim=3)
>>> clusterer.process(x=300 + t // 8, y=200 + t % 8, t=1_000_000 + t, p=t % 2)
>>> clusters = clusterer.generate(timestamp=1_010_000)
>>> clusters[['x', 'y', 'width', 'height', 'start_time', 'duration']].tolist()
[(300.0, 200.0, 4.0, 7.0, 1000000, 39)]
>>> clusterer.points()[0].shape
(40, 3)
)";

class DensityClusterer : public Clusterer {
public:
    using Clusterer::Clusterer;
};

std::unique_ptr<DensityClusterer> makeDensityClusterer(std::int64_t width, std::int64_t height,
                                                       const py::kwargs& parameters) {
    return std::make_unique<DensityClusterer>(clustererSettings("density", parameters),
                                              toSensorSize(width, height));
}

}  // namespace

void bindDensityClusterer(py::module_& module) {
    const std::string doc = std::string(kDoc) + kPointParametersDoc + kExamplesDoc;
    py::class_<DensityClusterer> type(module, "DensityClusterer", doc.c_str());
    defineConstructor(type, &makeDensityClusterer, py::arg("width"), py::arg("height"));
    bindClusterer(type);
    type.def(
        "points", [](DensityClusterer& self) { return clusterPoints(self); }, kPointsDoc);
    type.def(
        "labels", [](DensityClusterer& self) { return eventLabels(self); }, kLabelsDoc);
}

}  // namespace kelvora::python
