// SPDX-License-Identifier: MIT
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "bindings.hpp"
#include "event_records.hpp"
#include "settings.hpp"
#include "simulation/event_simulator.hpp"
#include "simulation/ground_truth.hpp"
#include "simulation/scene_options.hpp"
#include "text_fields.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

using simulation::SceneOptions;

constexpr const char* kSimulateDoc =
    R"(simulate(*, sensor=(640, 480), duration_us=2000000, truth_interval_us=10000, seed=7, discs=None, bars=None, polygons=None, lights=1, light_frequency_hz=100.0, noise_rate_hz=0.1, hot_pixels=4, hot_pixel_rate_hz=500.0, contrast_threshold=0.2, threshold_spread=0.03)

Simulate the events of a scene with known objects.

The same arguments give the same events with every compiler and on every machine.

Parameters
----------
sensor : tuple of int
    Width and height in pixels, 16 to 4096 each.
duration_us : int
    Length of the recording, microseconds.
truth_interval_us : int
    Time between two rows of the same object in the truth, microseconds, 100 to 1000000. Clusters of
    windows of this length can be compared with the rows of the same timestamp.
seed : int
    Seed of the random numbers.
discs, bars, polygons : int, optional
    Number of moving objects, 0 to 100 each. 3, 2 and 3 by default, fewer below 120 pixels.
lights : int
    Number of flickering lights, 0 to 100.
light_frequency_hz : float
    Periods of a light per second, 1 to 500.
noise_rate_hz : float
    Background noise, events per pixel and second, 0 to 100.
hot_pixels : int
    Number of pixels that report events all the time, 0 to 1000.
hot_pixel_rate_hz : float
    Events per hot pixel and second, 0 to 100000.
contrast_threshold : float
    Change of the logarithm of the brightness that causes an event, 0.01 to 10.
threshold_spread : float
    Relative standard deviation of the threshold among pixels, 0 to 0.2.

Returns
-------
events : numpy.ndarray
    Records with the fields ``x``, ``y``, ``p`` and ``t``, as `read` yields them. All events are
    in memory: about 900,000 per second of the default scene.
truth : numpy.ndarray
    A row for each object and interval: ``timestamp``, the end of the interval, microseconds;
    ``id``, starting at 1; ``kind``: disc, bar, polygon or light; ``x``, ``y``, ``width`` and
    ``height`` of the box around the whole area that the object covered, pixels; ``visibility``, its
    visible share; ``moving``; and ``speed``, pixels per second.

Raises
------
TypeError, ValueError
    For arguments of a wrong type or out of range.

Examples
--------
>>> import kelvora
>>> events, truth = kelvora.simulate(sensor=(320, 240), duration_us=100_000, discs=2, bars=0)
>>> events.dtype.names
('x', 'y', 'p', 't')
>>> truth[truth['timestamp'] == 50_000][['id', 'kind']].tolist()
[(1, 'light'), (2, 'disc'), (3, 'disc'), (4, 'polygon'), (5, 'polygon'), (6, 'polygon')]
)";

/// The true position of an object. The name of its kind is padded with zeros.
struct TruthRow {
    std::int64_t timestamp;
    std::int64_t id;
    std::array<char, 7> kind;
    float x;
    float y;
    float width;
    float height;
    float visibility;
    bool moving;
    float speed;
};

TruthRow toRow(const simulation::GroundTruth& truth) {
    TruthRow row{};
    row.timestamp = static_cast<std::int64_t>(truth.timestamp_us);
    row.id = truth.id;
    const std::string kind = simulation::nameOf(truth.kind);
    std::copy(kind.begin(), kind.end(), row.kind.begin());
    row.x = truth.x;
    row.y = truth.y;
    row.width = truth.width;
    row.height = truth.height;
    row.visibility = truth.visibility;
    row.moving = truth.moving;
    row.speed = truth.speed;
    return row;
}

py::object toTable(const std::vector<simulation::GroundTruth>& truth) {
    py::array_t<TruthRow> array(static_cast<py::ssize_t>(truth.size()));
    std::transform(truth.begin(), truth.end(), array.mutable_data(),
                   [](const simulation::GroundTruth& row) { return toRow(row); });
    return array.attr("astype")(withStrings(array.dtype()));
}

/// Simulates the whole recording: the events and the true positions.
py::tuple simulate(const SceneOptions& options) {
    std::vector<Event2D> events;
    std::vector<simulation::GroundTruth> truth;
    {
        const py::gil_scoped_release release;
        simulation::EventSimulator simulator(options);
        while (simulator.step(events, truth)) {
            const py::gil_scoped_acquire acquire;
            if (PyErr_CheckSignals() != 0) {
                throw py::error_already_set();
            }
        }
    }
    return py::make_tuple(toArray(events), toTable(truth));
}

py::tuple simulateScene(const std::pair<int, int>& sensor, std::uint64_t duration_us,
                        std::uint64_t truth_interval_us, std::uint64_t seed,
                        std::optional<int> discs, std::optional<int> bars,
                        std::optional<int> polygons, int lights, double light_frequency_hz,
                        double noise_rate_hz, int hot_pixels, double hot_pixel_rate_hz,
                        double contrast_threshold, double threshold_spread) {
    SceneOptions options;
    std::tie(options.width, options.height) = sensor;
    options.duration_us = duration_us;
    options.truth_interval_us = truth_interval_us;
    options.seed = seed;
    options.discs = discs;
    options.bars = bars;
    options.polygons = polygons;
    options.lights = lights;
    options.light_frequency_hz = light_frequency_hz;
    options.noise_rate_hz = noise_rate_hz;
    options.hot_pixels = hot_pixels;
    options.hot_pixel_rate_hz = hot_pixel_rate_hz;
    options.contrast_threshold = contrast_threshold;
    options.threshold_spread = threshold_spread;
    return simulate(options);
}

}  // namespace

void bindSimulation(py::module_& module) {
    PYBIND11_NUMPY_DTYPE(TruthRow, timestamp, id, kind, x, y, width, height, visibility, moving,
                         speed);
    const SceneOptions defaults;
    module.def("simulate", &simulateScene, py::kw_only(),
               py::arg("sensor") = std::make_pair(defaults.width, defaults.height),
               py::arg("duration_us") = defaults.duration_us,
               py::arg("truth_interval_us") = defaults.truth_interval_us,
               py::arg("seed") = defaults.seed, py::arg("discs") = defaults.discs,
               py::arg("bars") = defaults.bars, py::arg("polygons") = defaults.polygons,
               py::arg("lights") = defaults.lights,
               py::arg("light_frequency_hz") = defaults.light_frequency_hz,
               py::arg("noise_rate_hz") = defaults.noise_rate_hz,
               py::arg("hot_pixels") = defaults.hot_pixels,
               py::arg("hot_pixel_rate_hz") = defaults.hot_pixel_rate_hz,
               py::arg("contrast_threshold") = defaults.contrast_threshold,
               py::arg("threshold_spread") = defaults.threshold_spread, kSimulateDoc);
}

}  // namespace kelvora::python
