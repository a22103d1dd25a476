// SPDX-License-Identifier: MIT
#include "cluster_rows.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>

#include "event_array.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

/// One cluster, as `generate` returns it.
struct RowFields {
    std::int64_t timestamp;
    float x;
    float y;
    float width;
    float height;
    std::int64_t start_time;
    std::int64_t duration;
    std::int64_t events;
};

template <typename T>
py::array_t<T> field(const py::array& rows, const std::string& name) {
    const py::object names = rows.dtype().attr("names");
    if (names.is_none() || rows.ndim() != 1) {
        throw py::type_error(
            "clusters must be an array of one dimension with named fields, as generate() returns");
    }
    if (!names.contains(name)) {
        throw py::value_error(
            fmt::format("clusters have no field '{}', only {}", name, std::string(py::str(names))));
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

py::array toArray(const std::vector<tool::ClusterRow>& rows) {
    py::array_t<RowFields> array(static_cast<py::ssize_t>(rows.size()));
    std::transform(rows.begin(), rows.end(), array.mutable_data(),
                   [](const tool::ClusterRow& row) -> RowFields {
                       return {row.timestamp, row.x,          row.y,        row.width,
                               row.height,    row.start_time, row.duration, row.events};
                   });
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

py::dtype registerClusterRow() {
    PYBIND11_NUMPY_DTYPE(RowFields, timestamp, x, y, width, height, start_time, duration, events);
    return py::dtype::of<RowFields>();
}

}  // namespace kelvora::python
