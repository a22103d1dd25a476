// SPDX-License-Identifier: MIT
#include "point_clusterer.hpp"

#include <algorithm>
#include <cmath>

namespace kelvora::python {

namespace py = pybind11;

namespace {

float toScale(double scale, const char* message) {
    const auto rounded = static_cast<float>(scale);
    require(std::isfinite(rounded) && rounded > 0.0F, message);
    return rounded;
}

/// The bound, or the largest number if there is none.
unsigned long long toBound(std::optional<std::int64_t> bound, const char* message) {
    require(!bound || *bound >= 1, message);
    return bound ? static_cast<unsigned long long>(*bound)
                 : std::numeric_limits<unsigned long long>::max();
}

py::array_t<double> toArray(const PointTable& table) {
    const std::size_t rows = table.coordinates.size() / table.dim;
    py::array_t<double> array({rows, table.dim});
    std::copy(table.coordinates.begin(), table.coordinates.end(), array.mutable_data());
    return array;
}

/// Calls a function with the engine while the GIL is released.
template <class Read>
auto readPoints(PointClusterer& clusterer, const Read& read) {
    const py::gil_scoped_release release;
    return clusterer.readEngine<PointEngine>(read);
}

}  // namespace

PointParameters toPointParameters(recording::SensorSize sensor, const PointArguments& arguments) {
    require(arguments.dim == 2 || arguments.dim == 3, "dim must be 2 or 3");
    require(arguments.precision == "float" || arguments.precision == "double",
            "precision must be 'float' or 'double'");
    constexpr const char* kScaleRule = "scale_x and scale_y must be larger than 0";
    return {sensor,
            arguments.dim,
            arguments.precision == "double",
            toScale(arguments.scale_x, kScaleRule),
            toScale(arguments.scale_y, kScaleRule),
            toScale(1.0 / arguments.us_per_pixel, "us_per_pixel must be larger than 0"),
            toBound(arguments.capacity, "capacity must be at least 1"),
            toBound(arguments.time_length_us, "time_length_us must be at least 1")};
}

py::list clusterPoints(PointClusterer& clusterer) {
    const std::vector<PointTable> tables = readPoints(
        clusterer, [](PointEngine& engine, std::uint64_t origin) { return engine.points(origin); });
    py::list arrays;
    for (const PointTable& table : tables) {
        arrays.append(toArray(table));
    }
    return arrays;
}

py::array_t<double> clusterCentroids(PointClusterer& clusterer) {
    return toArray(readPoints(clusterer, [](PointEngine& engine, std::uint64_t origin) {
        return engine.centroids(origin);
    }));
}

py::array_t<std::int64_t> clusterSizes(PointClusterer& clusterer) {
    const auto sizes =
        readPoints(clusterer, [](PointEngine& engine, std::uint64_t) { return engine.sizes(); });
    py::array_t<std::int64_t> array(static_cast<py::ssize_t>(sizes.size()));
    std::transform(sizes.begin(), sizes.end(), array.mutable_data(),
                   [](unsigned long long size) { return static_cast<std::int64_t>(size); });
    return array;
}

}  // namespace kelvora::python
