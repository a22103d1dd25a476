// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "clusterer.hpp"
#include "point_engine.hpp"

namespace kelvora::python {

/// A clusterer of points of any method.
class PointClusterer : public Clusterer {
public:
    PointClusterer(const PointParameters& parameters, Polarity polarity, MakeEngine make_engine_)
        : Clusterer({parameters.sensor, polarity, longestSlice(parameters)},
                    std::move(make_engine_)) {}

private:
    /// In three dimensions, times within a slice are 32-bit microseconds.
    static std::uint64_t longestSlice(const PointParameters& parameters) {
        return parameters.dim == 3 ? 1'800'000'000 : EventIntake::kNoLongestSlice;
    }
};

/// Keyword arguments of the methods that cluster points, as given by the user.
struct PointArguments {
    int dim;
    double scale_x;
    double scale_y;
    double us_per_pixel;
    std::optional<std::int64_t> capacity;
    std::optional<std::int64_t> time_length_us;
    std::string precision;
};

/// \throws std::invalid_argument  for an invalid argument.
PointParameters toPointParameters(recording::SensorSize sensor, const PointArguments& arguments);

/// The part of the docstrings that describes these arguments.
inline constexpr const char* kPointParametersDoc =
    R"(dim : {2, 3}
    2: cluster in the image plane. 3: in space and time.
scale_x, scale_y : float
    Scaled units per pixel.
us_per_pixel : float
    Microseconds that count as much as one pixel. Unused in two dimensions.
capacity : int, optional
    Maximum number of events to cluster; the newest are kept. All by default.
time_length_us : int, optional
    Window of the event counter, microseconds: forgets events only across gaps longer than a
    hundredth of it. All by default.
precision : {'float', 'double'}
    Type of the points. Times are relative to the first event since the last `generate`, so that
    float represents single microseconds for 8 seconds.
polarity : {'all', 'on', 'off'}
    Events to cluster.
)";

/// The points of all clusters of the last `generate`, as a list of arrays.
pybind11::list clusterPoints(PointClusterer& clusterer);

pybind11::array_t<double> clusterCentroids(PointClusterer& clusterer);

pybind11::array_t<std::int64_t> clusterSizes(PointClusterer& clusterer);

inline constexpr const char* kPointsDoc =
    R"(points()

The events of each cluster of the last `generate`.

Returns
-------
list of numpy.ndarray
    For each row of the last `generate`, an array of shape (n, dim): column, row and, in three
    dimensions, time, in pixels and microseconds.
)";

}  // namespace kelvora::python
