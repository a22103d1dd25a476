// SPDX-License-Identifier: MIT
#include <fmt/format.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "bindings.hpp"
#include "event_array.hpp"
#include "kelvora/centroid_clustering.hpp"
#include "kelvora/density_clustering.hpp"
#include "settings.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

using Clusters = std::vector<std::vector<std::size_t>>;

constexpr std::int64_t kMostPoints = 1 << 30;

constexpr const char* kDbscanDoc = R"(dbscan(points, eps, min_pts, jobs=1)

Group points by density.

Parameters
----------
points : array_like
    Shape (n, 2) or (n, 3). ``float32`` is kept, other types are converted to ``float64``.
eps : float
    Radius of a neighbourhood, in the unit of the points. Points at exactly this distance lie
    outside.
min_pts : int
    Number of points that make a neighbourhood dense, including the point itself.
jobs : int
    Number of threads; -1: one per processor. With two or more, a core point needs `min_pts`
    neighbours besides itself, and a border point joins the clusters of all its core points into
    one.

Returns
-------
numpy.ndarray
    The cluster number of each point, ``int64``; -1 for noise. Clusters are numbered in the order
    of their first core points or, with several jobs, of their first points. Points that are not
    finite are noise.

Raises
------
TypeError, ValueError
    If the points have another type or shape, or a parameter is out of range.

Examples
--------
>>> import kelvora
>>> kelvora.dbscan([[0.0, 0.0], [1.0, 0.0], [9.0, 9.0], [0.0, 1.0]], eps=1.5, min_pts=3)
array([ 0,  0, -1,  0])
)";

constexpr const char* kKmeansDoc = R"(kmeans(points, k, *, max_iter=100, tol=1e-4)

Divide points into k clusters around centroids.

Parameters
----------
points : array_like
    Shape (n, 2) or (n, 3), at least k points, all finite. ``float32`` is kept, other types are
    converted to ``float64``.
k : int
    Number of clusters.
max_iter : int
    Maximum number of iterations.
tol : float
    Stop when the sum of squared distances changes by less, squared units of the points.

Returns
-------
labels : numpy.ndarray
    The cluster number of each point, ``int64``.
centroids : numpy.ndarray
    Shape (k, 2) or (k, 3), of the type used for clustering. They are updated once more after the
    last assignment of points.

Raises
------
TypeError, ValueError
    If the points have another type or shape, or a parameter is out of range.

Notes
-----
Results differ from run to run, because the first centroid is drawn at random. The others start
far from each other.

Examples
--------
>>> import kelvora
>>> labels, centroids = kelvora.kmeans([[0, 0], [0, 2], [9, 0], [9, 2]], k=2)
>>> sorted(centroids.tolist())
[[0.0, 1.0], [9.0, 1.0]]
>>> bool(labels[0] == labels[1] != labels[2] == labels[3])
True
)";

/// The points in C order, as a type that can be clustered.
py::array pointsOf(const py::object& object) {
    const py::array points = asArray(object, "points");
    if (points.ndim() != 2 || (points.shape(1) != 2 && points.shape(1) != 3)) {
        throw py::value_error(fmt::format("points must have the shape (n, 2) or (n, 3), not {}",
                                          std::string(py::str(points.attr("shape")))));
    }
    const char kind = points.dtype().kind();
    if (kind != 'f' && kind != 'i' && kind != 'u') {
        throw py::type_error(
            fmt::format("points must be integers or floating-point numbers, not {}",
                        std::string(py::str(static_cast<py::object>(points.dtype())))));
    }
    const bool is_float = kind == 'f' && points.itemsize() == 4;
    const py::dtype type = is_float ? py::dtype::of<float>() : py::dtype::of<double>();
    return py::module_::import("numpy").attr("ascontiguousarray")(points, type);
}

/// Copies the points. Does not need the GIL while the array exists.
template <int DIM, typename T>
std::vector<KDPoint<DIM, T>> toPoints(const void* data, std::size_t count) {
    std::vector<KDPoint<DIM, T>> points(count);
    static_assert(sizeof(KDPoint<DIM, T>) == DIM * sizeof(T));
    if (count > 0) {
        std::memcpy(points.data()->coordinates.data(), data, count * sizeof(KDPoint<DIM, T>));
    }
    return points;
}

void fillLabels(const Clusters& clusters, std::int64_t* labels) {
    for (std::size_t cluster = 0; cluster < clusters.size(); ++cluster) {
        for (const std::size_t point : clusters[cluster]) {
            labels[point] = static_cast<std::int64_t>(cluster);
        }
    }
}

/// Calls `call` with a point of the array's dimension and type. Only the type of the point matters.
template <class Call>
auto withTypeOf(const py::array& points, const Call& call) {
    const bool is_float = points.itemsize() == sizeof(float);
    if (points.shape(1) == 2) {
        return is_float ? call(KDPoint<2, float>()) : call(KDPoint<2, double>());
    }
    return is_float ? call(KDPoint<3, float>()) : call(KDPoint<3, double>());
}

struct DensityParameters {
    double eps;
    int min_pts;
    unsigned char jobs;
};

template <int DIM, typename T>
py::array_t<std::int64_t> clusterByDensity(const KDPoint<DIM, T>&, const py::array& array,
                                           const DensityParameters& parameters) {
    const auto count = static_cast<std::size_t>(array.shape(0));
    py::array_t<std::int64_t> labels(array.shape(0));
    std::int64_t* const labels_data = labels.mutable_data();
    const void* const data = array.data();
    const py::gil_scoped_release release;
    Clusters clusters;
    std::vector<std::vector<T>> boxes;
    DensityClustering<DIM, T>(parameters.eps, parameters.min_pts)
        .generateClustersMultiThread(toPoints<DIM, T>(data, count), clusters, boxes,
                                     parameters.jobs);
    if (parameters.jobs > 1) {
        // Several threads find clusters in any order. Indices within a cluster are ascending.
        std::sort(clusters.begin(), clusters.end(),
                  [](const auto& a, const auto& b) { return a.front() < b.front(); });
    }
    std::fill(labels_data, labels_data + count, -1);
    fillLabels(clusters, labels_data);
    return labels;
}

py::array_t<std::int64_t> dbscan(const py::object& points, double eps, std::int64_t min_pts,
                                 int jobs) {
    require(std::isfinite(eps) && eps > 0.0, "eps must be larger than 0, and finite");
    require(min_pts >= 1 && min_pts < kMostPoints, "min_pts must be from 1 to 2^30 - 1");
    require(jobs == -1 || (jobs >= 1 && jobs <= 255), "jobs must be from 1 to 255, or -1");
    const unsigned all = std::clamp(std::thread::hardware_concurrency(), 1U, 255U);
    const DensityParameters parameters{
        eps, static_cast<int>(min_pts),
        static_cast<unsigned char>(jobs == -1 ? all : static_cast<unsigned>(jobs))};
    const py::array array = pointsOf(points);
    return withTypeOf(array,
                      [&](const auto& type) { return clusterByDensity(type, array, parameters); });
}

struct CentroidParameters {
    std::size_t k;
    std::size_t max_iter;
    double tol;
};

template <int DIM, typename T>
void checkFinite(const std::vector<KDPoint<DIM, T>>& points) {
    for (const KDPoint<DIM, T>& point : points) {
        for (const T coordinate : point.coordinates) {
            require(std::isfinite(coordinate), "points must be finite");
        }
    }
}

template <int DIM, typename T>
py::tuple clusterAroundCentroids(const KDPoint<DIM, T>&, const py::array& array,
                                 const CentroidParameters& parameters) {
    const auto count = static_cast<std::size_t>(array.shape(0));
    py::array_t<std::int64_t> labels(array.shape(0));
    py::array_t<T> means({parameters.k, std::size_t{DIM}});
    std::int64_t* const labels_data = labels.mutable_data();
    T* means_data = means.mutable_data();
    const void* const data = array.data();
    {
        const py::gil_scoped_release release;
        const auto points = toPoints<DIM, T>(data, count);
        checkFinite(points);
        Clusters clusters;
        std::vector<std::vector<T>> boxes;
        std::vector<KDPoint<DIM, T>> centroids;
        CentroidClustering<DIM, T> clustering(parameters.k, parameters.max_iter, parameters.tol);
        clustering.generateClusters(points, clusters, boxes);
        clustering.getCentroids(centroids);
        fillLabels(clusters, labels_data);
        for (const KDPoint<DIM, T>& centroid : centroids) {
            means_data =
                std::copy(centroid.coordinates.begin(), centroid.coordinates.end(), means_data);
        }
    }
    return py::make_tuple(labels, means);
}

py::tuple kmeans(const py::object& points, std::int64_t k, std::int64_t max_iter, double tol) {
    const py::array array = pointsOf(points);
    require(k >= 1, "k must be at least 1");
    require(k <= array.shape(0), "there are fewer points than k");
    require(max_iter >= 1, "max_iter must be at least 1");
    require(tol > 0.0, "tol must be larger than 0");
    const CentroidParameters parameters{static_cast<std::size_t>(k),
                                        static_cast<std::size_t>(max_iter), tol};
    return withTypeOf(
        array, [&](const auto& type) { return clusterAroundCentroids(type, array, parameters); });
}

}  // namespace

void bindPointClustering(py::module_& module) {
    module.def("dbscan", &dbscan, py::arg("points"), py::arg("eps"), py::arg("min_pts"),
               py::arg("jobs") = 1, kDbscanDoc);
    module.def("kmeans", &kmeans, py::arg("points"), py::arg("k"), py::kw_only(),
               py::arg("max_iter") = 100, py::arg("tol") = 1e-4, kKmeansDoc);
}

}  // namespace kelvora::python
