// SPDX-License-Identifier: MIT
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <opencv2/core/mat.hpp>
#include <string>
#include <vector>

#include "bindings.hpp"
#include "clusterer.hpp"
#include "ownership.hpp"
#include "sessions/grid_method.hpp"
#include "settings.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr const char* kDoc =
    R"(GridClusterer(width, height, *, cell_width=5, cell_height=5, min_cluster_size=15, max_cluster_size=10000, activation_threshold=2, count_every_event=False, polarity='all')

Find clusters by counting events in the cells of a grid and joining neighbouring active cells.

This is the fastest method: an event takes constant time, and `generate` visits each cell once. The
defaults suit windows of about 10 ms.

Parameters
----------
width, height : int
    Size of the sensor, pixels.
cell_width, cell_height : int
    Size of a cell, pixels.
min_cluster_size, max_cluster_size : int
    Smallest and largest accepted width and height of a cluster, pixels, measured in whole cells.
    A single active cell makes a cluster of two by two cells.
activation_threshold : int
    Number of events that make a cell active.
count_every_event : bool
    Count all events of a pixel, not only the first since the last `generate`. Hot pixels then
    count fully.
polarity : {'all', 'on', 'off', 'separate'}
    Events to cluster. 'separate' uses all, but each polarity must reach the threshold.

Examples
--------
>>> import numpy as np
>>> import kelvora
>>> x, y = np.meshgrid(np.arange(100, 130), np.arange(200, 220))
>>> t = np.arange(x.size)
>>> clusterer = kelvora.GridClusterer(640, 480)
>>> clusterer.process(x=x.ravel(), y=y.ravel(), t=t, p=t % 2)
>>> clusters = clusterer.generate(timestamp=10_000)
>>> clusters[['x', 'y', 'width', 'height']].tolist()
[(100.0, 200.0, 35.0, 25.0)]
)";

constexpr const char* kActiveMapDoc =
    R"(active_map()

Events counted per pixel since the last `generate`.

Returns
-------
numpy.ndarray
    Copy of the counts, ``uint8``, of shape (height, width). They stop at 1, or at 255 with
    `count_every_event`.
)";

class GridClusterer : public Clusterer {
public:
    using Clusterer::Clusterer;
};

std::unique_ptr<GridClusterer> makeGridClusterer(std::int64_t width, std::int64_t height,
                                                 const py::kwargs& parameters) {
    return std::make_unique<GridClusterer>(clustererSettings("grid", parameters),
                                           toSensorSize(width, height));
}

py::array_t<std::uint8_t> activeMap(GridClusterer& self) {
    cv::Size size;
    std::vector<std::uint8_t> counts;
    {
        const py::gil_scoped_release release;
        self.read([&](tool::Session& session) {
            const cv::Mat map = session.methodAs<tool::GridMethod>().activeMap();
            size = map.size();
            counts.assign(map.begin<std::uint8_t>(), map.end<std::uint8_t>());
        });
    }
    py::array_t<std::uint8_t> array({size.height, size.width});
    std::copy(counts.begin(), counts.end(), array.mutable_data());
    return array;
}

}  // namespace

void bindGridClusterer(py::module_& module) {
    py::class_<GridClusterer> type(module, "GridClusterer", kDoc);
    defineConstructor(type, &makeGridClusterer, py::arg("width"), py::arg("height"));
    bindClusterer(type);
    type.def("active_map", &activeMap, kActiveMapDoc);
}

}  // namespace kelvora::python
