// SPDX-License-Identifier: MIT
#include "cluster_rows.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <type_traits>

#include "event_array.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

template <typename T>
py::array_t<T> field(const py::array& rows, const std::string& name) {
    const py::object names = rows.dtype().attr("names");
    if (names.is_none() || rows.ndim() != 1) {
        throw py::type_error(
            "clusters must be an array of one dimension with named fields, as generate() returns");
    }
    if (!names.contains(name)) {
        throw py::value_error(
            fmt::format("clusters have no field '{}', but {}", name, std::string(py::str(names))));
    }
    const py::array values = rows.attr("__getitem__")(name);
    const char kind = values.dtype().kind();
    const bool is_fraction_fine = std::is_floating_point_v<T>;
    if (values.ndim() != 1 || (kind != 'i' && kind != 'u' && (kind != 'f' || !is_fraction_fine))) {
        throw py::type_error(fmt::format("field '{}' must be {}", name,
                                         is_fraction_fine ? "numbers" : "integers, microseconds"));
    }
    return values.attr("astype")(py::dtype::of<T>());
}

}  // namespace

ClusterRow toRow(const ClusterGeometry& cluster, std::uint64_t origin) {
    const std::int64_t start_time =
        cluster.start_time < 0 ? -1 : static_cast<std::int64_t>(origin) + cluster.start_time;
    return {static_cast<std::int64_t>(cluster.timestamp),
            cluster.x,
            cluster.y,
            cluster.width,
            cluster.height,
            start_time,
            cluster.duration};
}

py::array toArray(const std::vector<ClusterRow>& rows) {
    py::array_t<ClusterRow> array(static_cast<py::ssize_t>(rows.size()));
    std::copy(rows.begin(), rows.end(), array.mutable_data());
    return array;
}

std::vector<ClusterGeometry> toClusters(const py::object& rows_object) {
    const py::array rows = asArray(rows_object, "clusters");
    const auto timestamp = field<std::int64_t>(rows, "timestamp");
    const auto x = field<float>(rows, "x");
    const auto y = field<float>(rows, "y");
    const auto width = field<float>(rows, "width");
    const auto height = field<float>(rows, "height");
    std::vector<ClusterGeometry> clusters;
    for (py::ssize_t i = 0; i < rows.size(); ++i) {
        if (timestamp.at(i) < 0) {
            throw py::value_error(fmt::format(
                "timestamp of cluster {} is {}: it must not be negative", i, timestamp.at(i)));
        }
        clusters.emplace_back(x.at(i), y.at(i), width.at(i), height.at(i),
                              static_cast<unsigned long long>(timestamp.at(i)));
    }
    return clusters;
}

void registerClusterRow() {
    PYBIND11_NUMPY_DTYPE(ClusterRow, timestamp, x, y, width, height, start_time, duration);
}

}  // namespace kelvora::python
