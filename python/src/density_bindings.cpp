// SPDX-License-Identifier: MIT
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numeric>
#include <string>
#include <tuple>
#include <vector>

#include "bindings.hpp"
#include "kelvora/density_based_cluster_generator.hpp"
#include "point_clusterer.hpp"
#include "point_engine.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr const char* kDoc =
    R"(DensityClusterer(width, height, *, eps=10.0, min_pts=10, jobs=1, dim=2, scale_x=1.0, scale_y=1.0, us_per_pixel=1000.0, capacity=None, time_length_us=None, precision='float', polarity='all')

Find clusters of any shape where events lie densely, by DBSCAN. Other events are noise.

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
    Number of threads. 0: chosen by the number of events, -1: all. Two or more count a core point
    differently (one neighbour more) and let border points join clusters, so results differ from
    one thread.
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

struct DensityParameters {
    double eps;
    int min_pts;
    int jobs;
};

/// Several threads find clusters in any order. Clusters are sorted by box, first in time and then
/// in space, so that results are the same in every run.
std::vector<std::size_t> orderOf(const std::vector<ClusterGeometry>& clusters) {
    std::vector<std::size_t> order(clusters.size());
    std::iota(order.begin(), order.end(), 0);
    const auto key = [&](std::size_t i) {
        const ClusterGeometry& box = clusters[i];
        return std::make_tuple(box.start_time, box.y, box.x, box.height, box.width, box.duration);
    };
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
    return order;
}

template <int DIM, typename T>
class DensityEngine : public PointEngine {
public:
    DensityEngine(const PointParameters& parameters_, const DensityParameters& density)
        : parameters(parameters_),
          is_ordered(density.jobs == 1),
          generator(parameters.sensor.width, parameters.sensor.height, parameters.scale_x,
                    parameters.scale_y, parameters.scale_time, POLARITY_FREE, parameters.capacity,
                    parameters.time_length, density.eps, density.min_pts, density.jobs) {}

    void process(const Event2D* events, std::size_t count) override {
        generator.processEvents(events, count);
    }

    void generate(std::uint64_t timestamp, std::vector<ClusterGeometry>& clusters) override {
        generator.generateClusters(timestamp, clusters);
        if constexpr (DIM == 3) {
            setTimes(clusterPoints(), parameters.scale_time, clusters);
        }
        order.resize(clusters.size());
        std::iota(order.begin(), order.end(), 0);
        if (!is_ordered) {
            order = orderOf(clusters);
            const std::vector<ClusterGeometry> unordered = clusters;
            std::transform(order.begin(), order.end(), clusters.begin(),
                           [&](std::size_t i) { return unordered[i]; });
        }
    }

    std::vector<PointTable> points(std::uint64_t origin) override {
        const std::vector<std::vector<KDPoint<DIM, T>>> found = clusterPoints();
        std::vector<PointTable> tables;
        for (const std::size_t i : order) {
            PointTable& table = tables.emplace_back(PointTable{DIM, {}});
            for (const KDPoint<DIM, T>& point : found[i]) {
                appendPoint(point, parameters, origin, true, table);
            }
        }
        return tables;
    }

    PointTable centroids(std::uint64_t) override { return {DIM, {}}; }

    std::vector<unsigned long long> sizes() override { return {}; }

private:
    std::vector<std::vector<KDPoint<DIM, T>>> clusterPoints() {
        std::vector<std::vector<KDPoint<DIM, T>>> found;
        generator.getClusterPoints(found, false);
        return found;
    }

    PointParameters parameters;
    bool is_ordered;
    std::vector<std::size_t> order;  ///< Indices of the generator's clusters.
    DensityBasedClusterGenerator<DIM, T> generator;
};

template <int DIM, typename T>
std::unique_ptr<Engine> makeEngine(const KDPoint<DIM, T>&, const PointParameters& point,
                                   const DensityParameters& density) {
    return std::make_unique<DensityEngine<DIM, T>>(point, density);
}

class DensityClusterer : public PointClusterer {
public:
    DensityClusterer(const PointParameters& point, const DensityParameters& density,
                     Polarity polarity)
        : PointClusterer(point, polarity, [point, density] {
              return makePointEngine(
                  point, [&](const auto& type) { return makeEngine(type, point, density); });
          }) {}
};

std::unique_ptr<DensityClusterer> makeDensityClusterer(
    std::int64_t width, std::int64_t height, double eps, int min_pts, int jobs, int dim,
    double scale_x, double scale_y, double us_per_pixel, std::optional<std::int64_t> capacity,
    std::optional<std::int64_t> time_length_us, const std::string& precision,
    const std::string& polarity) {
    require(std::isfinite(eps) && eps > 0.0, "eps must be larger than 0, and finite");
    require(min_pts >= 1, "min_pts must be at least 1");
    require(jobs >= -1 && jobs <= 255, "jobs must be from -1 to 255");
    const PointParameters point = toPointParameters(
        toSensorSize(width, height),
        {dim, scale_x, scale_y, us_per_pixel, capacity, time_length_us, precision});
    const DensityParameters density{eps, min_pts, jobs};
    return std::make_unique<DensityClusterer>(point, density, toPolarity(polarity));
}

}  // namespace

void bindDensityClusterer(py::module_& module) {
    const std::string doc = std::string(kDoc) + kPointParametersDoc + kExamplesDoc;
    py::class_<DensityClusterer> type(module, "DensityClusterer", doc.c_str());
    type.def(py::init(&makeDensityClusterer), py::arg("width"), py::arg("height"), py::kw_only(),
             py::arg("eps") = 10.0, py::arg("min_pts") = 10, py::arg("jobs") = 1,
             py::arg("dim") = 2, py::arg("scale_x") = 1.0, py::arg("scale_y") = 1.0,
             py::arg("us_per_pixel") = 1000.0, py::arg("capacity") = py::none(),
             py::arg("time_length_us") = py::none(), py::arg("precision") = "float",
             py::arg("polarity") = "all");
    bindClusterer(type);
    type.def(
        "points", [](DensityClusterer& self) { return clusterPoints(self); }, kPointsDoc);
}

}  // namespace kelvora::python
