// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core/types.hpp>
#include <vector>

#include "kelvora/cluster_geometry.hpp"

namespace kelvora::drawing {

/// An object that is followed.
struct TrackMark {
    int id;  ///< At least 0.
    ClusterGeometry box;
    std::vector<cv::Point2f> trail;  ///< Where its centre was, oldest first.
};

/// What is drawn over the events of a window, in pixels of the sensor.
struct Overlay {
    /// Outlined. Boxes are clipped to the sensor; left out are those that lie outside of it, and
    /// those with a negative size or a field that is not finite.
    std::vector<ClusterGeometry> clusters;

    /// Marked by crosses, unless they lie outside of the sensor. An event at the first pixel is at
    /// (0, 0).
    std::vector<cv::Point2f> centroids;

    /// Drawn over the others, each in the colour of its number: the box and the number if the box
    /// would be outlined above, and the trail as far as it is finite.
    std::vector<TrackMark> tracks;
};

}  // namespace kelvora::drawing
