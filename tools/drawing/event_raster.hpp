// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <opencv2/core/mat.hpp>
#include <opencv2/core/matx.hpp>
#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::drawing {

/// Events that lie one after the other in memory, which somebody else owns.
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

/// Values of a raster: what happened at a pixel. The last event of a pixel wins. Events with labels
/// are noise or belong to a cluster, whose number decides on one of a few values from
/// `kFirstCluster` on; others are told apart by polarity.
enum RasterValue : unsigned char { kNoEvent = 0, kOff = 1, kOn = 2, kNoise = 3, kFirstCluster = 4 };

/// The colour of an event: of its cluster or noise if it has a label, else of its polarity.
cv::Vec3b eventColour(const EventSpan& events, std::size_t i);

/// The events as a `CV_8UC1` matrix of `RasterValue`.
///
/// \param sensor  Size of the sensor, pixels. Events outside of it are left out.
/// \param raster  Size of the result, not larger than `sensor`. Where it is smaller, an event
///     lights the pixel it falls into, so that none vanishes.
cv::Mat rasterize(EventSpan events, cv::Size sensor, cv::Size raster);

/// Colours a raster and brings it to another size, `CV_8UC3` in the order blue, green, red.
///
/// Each pixel of the raster is drawn over the whole area it covers. Where the picture is smaller
/// than the raster it becomes a dot of two by two pixels, as single ones are easily overlooked.
cv::Mat colourRaster(const cv::Mat& raster, cv::Size picture);

}  // namespace kelvora::drawing
