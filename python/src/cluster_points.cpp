// SPDX-License-Identifier: MIT
#include "cluster_points.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kelvora::python {

namespace py = pybind11;

namespace {

/// Rows of `dim` coordinates: pixels and, in three dimensions, microseconds.
using Table = std::vector<double>;

std::vector<Table> pointsOf(const tool::Session& session, std::size_t dim) {
    const tool::WindowClusters& found = session.clusters();
    std::vector<Table> tables(found.clusters.size());
    for (std::size_t i = 0; i < found.labels.size(); ++i) {
        if (found.labels[i] != tool::kNoCluster) {
            Table& table = tables[static_cast<std::size_t>(found.labels[i])];
            const Event2D& event = session.events()[i];
            table.push_back(event.x);
            table.push_back(event.y);
            if (dim == 3) {
                table.push_back(static_cast<double>(event.timestamp));
            }
        }
    }
    return tables;
}

Table centroidsOf(const tool::Session& session) {
    Table table;
    for (const tool::ClusterCentroid& centroid : session.clusters().centroids) {
        table.push_back(centroid.x);
        table.push_back(centroid.y);
        if (centroid.time_us) {
            table.push_back(static_cast<double>(session.clusters().time_origin) +
                            *centroid.time_us);
        }
    }
    return table;
}

/// Calls a function with the session while the GIL is released.
template <class Read>
auto readSession(Clusterer& clusterer, const Read& read) {
    const py::gil_scoped_release release;
    return clusterer.read(read);
}

py::array_t<double> toPointArray(const Table& table, std::size_t dim) {
    py::array_t<double> array({table.size() / dim, dim});
    std::copy(table.begin(), table.end(), array.mutable_data());
    return array;
}

}  // namespace

py::list clusterPoints(Clusterer& clusterer) {
    const std::size_t dim = clusterer.dim();
    py::list arrays;
    for (const Table& table : readSession(
             clusterer, [dim](const tool::Session& session) { return pointsOf(session, dim); })) {
        arrays.append(toPointArray(table, dim));
    }
    return arrays;
}

py::array_t<std::int64_t> eventLabels(Clusterer& clusterer) {
    const std::vector<int> labels = readSession(
        clusterer, [](const tool::Session& session) { return session.clusters().labels; });
    py::array_t<std::int64_t> array(static_cast<py::ssize_t>(labels.size()));
    std::copy(labels.begin(), labels.end(), array.mutable_data());
    return array;
}

py::array_t<double> clusterCentroids(Clusterer& clusterer) {
    return toPointArray(readSession(clusterer, centroidsOf), clusterer.dim());
}

py::array_t<std::int64_t> clusterSizes(Clusterer& clusterer) {
    const auto centroids = readSession(
        clusterer, [](const tool::Session& session) { return session.clusters().centroids; });
    py::array_t<std::int64_t> array(static_cast<py::ssize_t>(centroids.size()));
    std::transform(centroids.begin(), centroids.end(), array.mutable_data(),
                   [](const tool::ClusterCentroid& centroid) {
                       return static_cast<std::int64_t>(centroid.size);
                   });
    return array;
}

}  // namespace kelvora::python
