// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <opencv2/core/mat.hpp>
#include <opencv2/core/matx.hpp>
#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::drawing {

/// A non-owning view of contiguous events.
struct EventSpan {
    const Event2D* first = nullptr;
    std::size_t count = 0;
    const int* labels = nullptr;  ///< Number of each event's cluster, negative for none; or null.

    EventSpan(const Event2D* first_, std::size_t count_, const int* labels_ = nullptr)
        : first{first_}, count{count_}, labels{labels_} {}
    // NOLINTNEXTLINE(google-explicit-constructor): a vector is such a span.
    EventSpan(const std::vector<Event2D>& events) : first{events.data()}, count{events.size()} {}

    const Event2D* begin() const { return first; }
    const Event2D* end() const { return first + count; }
};

/// Values of a raster. The last event of a pixel determines its value. Events with labels are noise
/// or belong to a cluster, whose number is mapped to one of a few values from `kFirstCluster` on.
/// Events without labels are distinguished by polarity.
enum RasterValue : unsigned char { kNoEvent = 0, kOff = 1, kOn = 2, kNoise = 3, kFirstCluster = 4 };

/// The colour of an event: by cluster or noise if it has a label, otherwise by polarity.
cv::Vec3b eventColour(const EventSpan& events, std::size_t i);

/// The events as a `CV_8UC1` matrix of `RasterValue`.
///
/// \param sensor  Size of the sensor, pixels. Events outside are omitted.
/// \param raster  Size of the result, not larger than `sensor`. If it is smaller, each event lights
///     the pixel that contains it, so that no event disappears.
cv::Mat rasterize(EventSpan events, cv::Size sensor, cv::Size raster);

/// Colours and resizes a raster: `CV_8UC3` in the order blue, green, red.
///
/// Each pixel of the raster fills the whole area it covers. If the picture is smaller than the
/// raster, each becomes a dot of two by two pixels, because single pixels are easy to miss.
cv::Mat colourRaster(const cv::Mat& raster, cv::Size picture);

}  // namespace kelvora::drawing
