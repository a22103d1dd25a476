// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>

#include "clusterer.hpp"

/// \file
/// Results of the methods that label events.

namespace kelvora::python {

/// The part of the docstrings that describes the parameters of these methods.
inline constexpr const char* kPointParametersDoc =
    R"(dim : {2, 3}
    2: cluster in the image plane. 3: in space and time.
scale_x, scale_y : float
    Scaled units per pixel.
us_per_pixel : float
    Microseconds that count as much as one pixel, in three dimensions.
scale_time : float, optional
    Scaled units per microsecond, instead of `us_per_pixel`.
capacity : int, optional
    Maximum number of events to cluster; the newest are kept. All by default.
time_length_us : int, optional
    Window of the event counter, microseconds. It discards old events only at gaps of at least a
    hundredth of it. All by default.
precision : {'float', 'double'}
    Type of the points. Times are relative to the first event since the last `generate`, so that
    float represents single microseconds for 8 seconds.
keep_zero_boxes : bool
    Report a cluster in a single row or column of pixels as the box (0, 0, 0, 0), as the library
    does. By default, its box is one pixel wide or high.
polarity : {'all', 'on', 'off'}
    Events to cluster.
)";

inline constexpr const char* kPointsDoc =
    R"(points()

The events of each cluster of the last `generate`.

Returns
-------
list of numpy.ndarray
    For each row of the last `generate`, an array of shape (n, dim): column, row and, in three
    dimensions, time, in pixels and microseconds.
)";

inline constexpr const char* kLabelsDoc =
    R"(labels()

The cluster of each event of the last `generate`.

Returns
-------
numpy.ndarray
    An integer for each event between the last two calls of `generate`, in order of arrival: the
    row of its cluster, or -1 for noise and for events that were not clustered. Events off the
    sensor or of another polarity have no label.
)";

/// The events of all clusters of the last `generate`, as a list of arrays.
pybind11::list clusterPoints(Clusterer& clusterer);

pybind11::array_t<std::int64_t> eventLabels(Clusterer& clusterer);

pybind11::array_t<double> clusterCentroids(Clusterer& clusterer);

pybind11::array_t<std::int64_t> clusterSizes(Clusterer& clusterer);

}  // namespace kelvora::python
