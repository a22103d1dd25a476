// SPDX-License-Identifier: MIT
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "bindings.hpp"
#include "kelvora/centroid_based_cluster_generator.hpp"
#include "point_clusterer.hpp"
#include "point_engine.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr const char* kDoc =
    R"(CentroidClusterer(width, height, k, *, max_iter=50, tol=1.0, dim=2, scale_x=1.0, scale_y=1.0, us_per_pixel=1000.0, capacity=None, time_length_us=None, precision='float', polarity='all')

Divide all events into k clusters around centroids, by k-means. No event is noise.

Call `generate` once per time window: otherwise, events of a dense stream are never discarded. With
fewer than k events there are no clusters. Results differ from run to run, because the first
centroid is drawn at random.

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
    A row for each row of the last `generate`, of shape (k, dim): column, row and, in three
    dimensions, time, in pixels and microseconds.
)";

constexpr const char* kSizesDoc =
    R"(sizes()

The number of events of each cluster of the last `generate`.

Returns
-------
numpy.ndarray
    A number for each row of the last `generate`. Clusters can be empty, if events coincide.
)";

struct CentroidParameters {
    unsigned long long k;
    unsigned long long max_iter;
    double tol;
};

template <int DIM, typename T>
class CentroidEngine : public PointEngine {
public:
    CentroidEngine(const PointParameters& parameters_, const CentroidParameters& centroid)
        : parameters(parameters_),
          generator(parameters.sensor.width, parameters.sensor.height, parameters.scale_x,
                    parameters.scale_y, parameters.scale_time, POLARITY_FREE, parameters.capacity,
                    parameters.time_length, centroid.k, centroid.max_iter, centroid.tol) {}

    void process(const Event2D* events, std::size_t count) override {
        generator.processEvents(events, count);
    }

    void generate(std::uint64_t timestamp, std::vector<ClusterGeometry>& clusters) override {
        generator.generateClusters(timestamp, clusters);
        has_clusters = !clusters.empty();
        if constexpr (DIM == 3) {
            setTimes(clusterPoints(), parameters.scale_time, clusters);
        }
    }

    std::vector<PointTable> points(std::uint64_t origin) override {
        std::vector<PointTable> tables;
        for (const std::vector<KDPoint<DIM, T>>& cluster : clusterPoints()) {
            PointTable& table = tables.emplace_back(PointTable{DIM, {}});
            for (const KDPoint<DIM, T>& point : cluster) {
                appendPoint(point, parameters, origin, true, table);
            }
        }
        return tables;
    }

    PointTable centroids(std::uint64_t origin) override {
        std::vector<KDPoint<DIM, T>> found;
        generator.getClusterCentroids(found);
        PointTable table{DIM, {}};
        for (const KDPoint<DIM, T>& centroid : found) {
            appendPoint(centroid, parameters, origin, false, table);
        }
        return table;
    }

    std::vector<unsigned long long> sizes() override {
        std::vector<unsigned long long> found;
        // The generator still has the sizes of the previous run.
        if (has_clusters) {
            generator.getClusterSizes(found);
        }
        return found;
    }

private:
    /// Empty if the last run had too few events: the generator then still has the previous
    /// centroids.
    std::vector<std::vector<KDPoint<DIM, T>>> clusterPoints() {
        std::vector<std::vector<KDPoint<DIM, T>>> found;
        if (has_clusters) {
            generator.getClusterPoints(found, false);
        }
        return found;
    }

    PointParameters parameters;
    bool has_clusters = false;
    CentroidBasedClusterGenerator<DIM, T> generator;
};

template <int DIM, typename T>
std::unique_ptr<Engine> makeEngine(const KDPoint<DIM, T>&, const PointParameters& point,
                                   const CentroidParameters& centroid) {
    return std::make_unique<CentroidEngine<DIM, T>>(point, centroid);
}

class CentroidClusterer : public PointClusterer {
public:
    CentroidClusterer(const PointParameters& point, const CentroidParameters& centroid,
                      Polarity polarity)
        : PointClusterer(point, polarity, [point, centroid] {
              return makePointEngine(
                  point, [&](const auto& type) { return makeEngine(type, point, centroid); });
          }) {}
};

std::unique_ptr<CentroidClusterer> makeCentroidClusterer(
    std::int64_t width, std::int64_t height, std::int64_t k, std::int64_t max_iter, double tol,
    int dim, double scale_x, double scale_y, double us_per_pixel,
    std::optional<std::int64_t> capacity, std::optional<std::int64_t> time_length_us,
    const std::string& precision, const std::string& polarity) {
    // The clustering's constructor allocates a count per cluster.
    require(k >= 1 && k <= 1'000'000, "k must be from 1 to 1000000");
    require(max_iter >= 1, "max_iter must be at least 1");
    require(tol > 0.0, "tol must be larger than 0");
    const PointParameters point = toPointParameters(
        toSensorSize(width, height),
        {dim, scale_x, scale_y, us_per_pixel, capacity, time_length_us, precision});
    const CentroidParameters centroid{static_cast<unsigned long long>(k),
                                      static_cast<unsigned long long>(max_iter), tol};
    return std::make_unique<CentroidClusterer>(point, centroid, toPolarity(polarity));
}

}  // namespace

void bindCentroidClusterer(py::module_& module) {
    const std::string doc = std::string(kDoc) + kPointParametersDoc + kExamplesDoc;
    py::class_<CentroidClusterer> type(module, "CentroidClusterer", doc.c_str());
    type.def(py::init(&makeCentroidClusterer), py::arg("width"), py::arg("height"), py::arg("k"),
             py::kw_only(), py::arg("max_iter") = 50, py::arg("tol") = 1.0, py::arg("dim") = 2,
             py::arg("scale_x") = 1.0, py::arg("scale_y") = 1.0, py::arg("us_per_pixel") = 1000.0,
             py::arg("capacity") = py::none(), py::arg("time_length_us") = py::none(),
             py::arg("precision") = "float", py::arg("polarity") = "all");
    bindClusterer(type);
    type.def(
        "points", [](CentroidClusterer& self) { return clusterPoints(self); }, kPointsDoc);
    type.def(
        "centroids", [](CentroidClusterer& self) { return clusterCentroids(self); }, kCentroidsDoc);
    type.def(
        "sizes", [](CentroidClusterer& self) { return clusterSizes(self); }, kSizesDoc);
}

}  // namespace kelvora::python
