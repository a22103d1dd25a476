// SPDX-License-Identifier: MIT
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <opencv2/core/mat.hpp>
#include <string>
#include <vector>

#include "bindings.hpp"
#include "clusterer.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr const char* kDoc =
    R"(GridClusterer(width, height, *, cell_width=5, cell_height=5, min_cluster_size=15, max_cluster_size=10000, activation_threshold=2, count_every_event=False, polarity='all')

Find clusters by counting events in the cells of a grid and joining neighbouring active cells.

The fastest method: constant time per event, and one pass over the grid per `generate`. The
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

struct GridParameters {
    recording::SensorSize sensor;
    int cell_width;
    int cell_height;
    int min_cluster_size;
    int max_cluster_size;
    unsigned short activation_threshold;
    bool count_every_event;
    bool is_separate;
};

class GridEngine : public Engine {
public:
    explicit GridEngine(const GridParameters& parameters)
        : generator(parameters.sensor.width, parameters.sensor.height, parameters.cell_width,
                    parameters.cell_height, parameters.max_cluster_size,
                    parameters.min_cluster_size,
                    parameters.is_separate ? POLARITY_SEPARATE : POLARITY_FREE,
                    !parameters.count_every_event, parameters.activation_threshold) {}

    void process(const Event2D* events, std::size_t count) override {
        generator.processEvents(events, count);
    }

    void generate(std::uint64_t timestamp, std::vector<ClusterGeometry>& clusters) override {
        generator.generateClusters(timestamp, clusters);
    }

    cv::Mat copyActiveMap() {
        cv::Mat map;
        generator.getActiveMap(map);
        return map.clone();
    }

private:
    GridBasedClusterGenerator generator;
};

class GridClusterer : public Clusterer {
public:
    GridClusterer(const GridParameters& parameters, Polarity polarity)
        : Clusterer({parameters.sensor, polarity, EventIntake::kNoLongestSlice},
                    [parameters] { return std::make_unique<GridEngine>(parameters); }) {}
};

int toInt(std::int64_t value, std::int64_t smallest, std::int64_t largest, const char* message) {
    require(value >= smallest && value <= largest, message);
    return static_cast<int>(value);
}

std::unique_ptr<GridClusterer> makeGridClusterer(
    std::int64_t width, std::int64_t height, std::int64_t cell_width, std::int64_t cell_height,
    std::int64_t min_cluster_size, std::int64_t max_cluster_size, std::int64_t activation_threshold,
    bool count_every_event, const std::string& polarity) {
    constexpr const char* kCellRule = "cell_width and cell_height must be from 1 to 65536 pixels";
    constexpr const char* kSizeRule =
        "min_cluster_size and max_cluster_size must be from 0 to 2^31 - 1 pixels";
    constexpr std::int64_t kMostPixels = std::numeric_limits<int>::max();
    const int threshold = toInt(activation_threshold, 0, std::numeric_limits<unsigned short>::max(),
                                "activation_threshold must be from 0 to 65535 events");
    const bool is_separate = polarity == "separate";
    const GridParameters parameters{toSensorSize(width, height),
                                    toInt(cell_width, 1, recording::kLargestSensorSide, kCellRule),
                                    toInt(cell_height, 1, recording::kLargestSensorSide, kCellRule),
                                    toInt(min_cluster_size, 0, kMostPixels, kSizeRule),
                                    toInt(max_cluster_size, 0, kMostPixels, kSizeRule),
                                    static_cast<unsigned short>(threshold),
                                    count_every_event,
                                    is_separate};
    return std::make_unique<GridClusterer>(parameters,
                                           is_separate ? Polarity::All : toPolarity(polarity));
}

py::array_t<std::uint8_t> activeMap(GridClusterer& self) {
    cv::Mat map;
    {
        const py::gil_scoped_release release;
        map = self.readEngine<GridEngine>(
            [](GridEngine& engine, std::uint64_t) { return engine.copyActiveMap(); });
    }
    py::array_t<std::uint8_t> array({map.rows, map.cols});
    std::memcpy(array.mutable_data(), map.data, map.total());
    return array;
}

}  // namespace

void bindGridClusterer(py::module_& module) {
    py::class_<GridClusterer> type(module, "GridClusterer", kDoc);
    type.def(py::init(&makeGridClusterer), py::arg("width"), py::arg("height"), py::kw_only(),
             py::arg("cell_width") = 5, py::arg("cell_height") = 5,
             py::arg("min_cluster_size") = 15, py::arg("max_cluster_size") = 10000,
             py::arg("activation_threshold") = 2, py::arg("count_every_event") = false,
             py::arg("polarity") = "all");
    bindClusterer(type);
    type.def("active_map", &activeMap, kActiveMapDoc);
}

}  // namespace kelvora::python
