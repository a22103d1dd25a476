// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core/types.hpp>
#include <vector>

#include "kelvora/cluster_geometry.hpp"

namespace kelvora::drawing {

/// A tracked object.
struct TrackMark {
    int id;  ///< At least 0.
    ClusterGeometry box;
    std::vector<cv::Point2f> trail;  ///< Where its centre was, oldest first.
};

/// Shapes drawn over the events of a window, in sensor pixels.
struct Overlay {
    /// Outlined and clipped to the sensor. Boxes outside the sensor, with a negative size, or with
    /// a field that is not finite are omitted.
    std::vector<ClusterGeometry> clusters;

    /// Marked by crosses, unless they lie outside the sensor. An event at the first pixel is at (0,
    /// 0).
    std::vector<cv::Point2f> centroids;

    /// Drawn on top, each in the colour of its number: the box and the number if the box meets the
    /// conditions above, and the finite part of the trail.
    std::vector<TrackMark> tracks;
};

}  // namespace kelvora::drawing
