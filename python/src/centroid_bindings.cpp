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
    R"(CentroidClusterer(width, height, k, *, max_iter=50, tol=1.0, dim=2, scale_x=1.0, scale_y=1.0, us_per_pixel=1000.0, scale_time=None, capacity=None, time_length_us=None, precision='float', keep_zero_boxes=False, polarity='all')

Divide all events into k clusters around centroids, by k-means. No event is noise.

Call `generate` once per time window: otherwise, events of a dense stream are never discarded. With
fewer than k events there are no clusters. If events coincide, there can be fewer than k clusters.
Results differ from run to run, because the first centroid is drawn at random.

Parameters
----------
width, height : int
    Size of the sensor, pixels.
k : int
    Number of clusters.
max_iter : int
    Maximum number of iterations.
tol : float
    Stop when the sum of squared distances changes by less, squared scaled units.
)";

constexpr const char* kExamplesDoc = R"(
Examples
--------
>>> import numpy as np
>>> import kelvora
>>> t = np.arange(40)
>>> clusterer = kelvora.CentroidClusterer(640, 480, k=2)
>>> clusterer.process(x=np.where(t < 20, 100, 500), y=200 + t % 2, t=t, p=t % 2)
>>> len(clusterer.generate(timestamp=10_000))
2
>>> sorted(clusterer.centroids().tolist())
[[100.0, 200.5], [500.0, 200.5]]
>>> clusterer.sizes()
array([20, 20])
)";

constexpr const char* kCentroidsDoc =
    R"(centroids()

The centroids of the clusters of the last `generate`.

Returns
-------
numpy.ndarray
    A row for each row of the last `generate`, of shape (n, dim): column, row and, in three
    dimensions, time, in pixels and microseconds.
)";

constexpr const char* kSizesDoc =
    R"(sizes()

The number of events of each cluster of the last `generate`.

Returns
-------
numpy.ndarray
    A number for each row of the last `generate`.
)";

class CentroidClusterer : public Clusterer {
public:
    using Clusterer::Clusterer;
};

std::unique_ptr<CentroidClusterer> makeCentroidClusterer(std::int64_t width, std::int64_t height,
                                                         const py::object& k,
                                                         const py::kwargs& parameters) {
    parameters["k"] = k;
    return std::make_unique<CentroidClusterer>(clustererSettings("centroid", parameters),
                                               toSensorSize(width, height));
}

}  // namespace

void bindCentroidClusterer(py::module_& module) {
    const std::string doc = std::string(kDoc) + kPointParametersDoc + kExamplesDoc;
    py::class_<CentroidClusterer> type(module, "CentroidClusterer", doc.c_str());
    defineConstructor(type, &makeCentroidClusterer, py::arg("width"), py::arg("height"),
                      py::arg("k"));
    bindClusterer(type);
    type.def(
        "points", [](CentroidClusterer& self) { return clusterPoints(self); }, kPointsDoc);
    type.def(
        "labels", [](CentroidClusterer& self) { return eventLabels(self); }, kLabelsDoc);
    type.def(
        "centroids", [](CentroidClusterer& self) { return clusterCentroids(self); }, kCentroidsDoc);
    type.def(
        "sizes", [](CentroidClusterer& self) { return clusterSizes(self); }, kSizesDoc);
}

}  // namespace kelvora::python
