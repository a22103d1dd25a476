// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core/types.hpp>

#include "kelvora/export.hpp"

namespace kelvora {

/// The box around one cluster, as every generator reports it.
///
/// A plain value with public fields, copied and moved field by field. No constructor checks its
/// arguments. Any number of threads may read one at the same time.
///
/// \code{.cpp}
/// const kelvora::ClusterGeometry cluster(10, 20, 6, 4, 1000);
/// const cv::Point_<float> centre = cluster.getCenter();
/// std::cout << "centre " << centre.x << ", " << centre.y << '\n';  // 13, 22
/// const cv::Rect_<float> left_half(0, 0, 320, 480);
/// const bool is_left = (cluster.get2DBoundingBox() & left_half).area() == cluster.getArea();
/// std::cout << (is_left ? "in" : "not in") << " the left half\n";
/// \endcode
struct KELVORA_EXPORT ClusterGeometry {
    float x;                   ///< Left edge, pixels.
    float y;                   ///< Top edge, pixels.
    unsigned long long z;      ///< Start along a third axis; generators set it to 0.
    float width;               ///< Pixels.
    float height;              ///< Pixels.
    unsigned long long depth;  ///< Extent along the third axis; generators set it to 0.
    int start_time = -1;  ///< Start in time (low 32 bits of the microseconds), -1 if not known.
    int duration = 0;     ///< Length in time, microseconds.
    unsigned long long timestamp = 0;  ///< As passed to `generateClusters`, microseconds.

    /// Sets `start_time`, `duration` and `timestamp` to their defaults.
    /// \note The box is not initialised, not even with `{}`: assign it before you read it.
    ClusterGeometry();

    /// A box in the image plane; `z` and `depth` are 0, the extent in time is not set.
    /// \param rect  Left edge, top edge, width and height, pixels.
    /// \param timestamp  Time of the batch, microseconds.
    ClusterGeometry(const cv::Rect_<float>& rect, unsigned long long timestamp);

    /// A box with an extent in time; `z` and `depth` are 0.
    /// \param rect  Left edge, top edge, width and height, pixels.
    /// \param start_time,duration  Microseconds; the low 32 bits are kept.
    /// \param timestamp  Time of the batch, microseconds.
    ClusterGeometry(const cv::Rect_<float>& rect, unsigned long long start_time,
                    unsigned long long duration, unsigned long long timestamp);

    /// A box in the image plane; `z` and `depth` are 0, the extent in time is not set.
    /// \param x,y  Left and top edge, pixels.
    /// \param width,height  Pixels.
    /// \param timestamp  Time of the batch, microseconds.
    ClusterGeometry(float x, float y, float width, float height, unsigned long long timestamp);

    /// A box with an extent in time; `z` and `depth` are 0.
    /// \param x,y  Left and top edge, pixels.
    /// \param width,height  Pixels.
    /// \param start_time,duration  Microseconds.
    /// \param timestamp  Time of the batch, microseconds.
    ClusterGeometry(float x, float y, float width, float height, int start_time, int duration,
                    unsigned long long timestamp);

    /// Sets every field.
    /// \param x,y  Left and top edge, pixels.
    /// \param z,depth  Start and extent along a third axis.
    /// \param width,height  Pixels.
    /// \param start_time,duration  Microseconds.
    /// \param timestamp  Time of the batch, microseconds.
    ClusterGeometry(float x, float y, unsigned long long z, float width, float height,
                    unsigned long long depth, int start_time, int duration,
                    unsigned long long timestamp);

    /// \cond field by field
    ClusterGeometry(const ClusterGeometry&) = default;
    ClusterGeometry(ClusterGeometry&&) = default;
    ClusterGeometry& operator=(const ClusterGeometry& other);
    ClusterGeometry& operator=(ClusterGeometry&& other) noexcept;
    ~ClusterGeometry() = default;
    /// \endcond

    /// Returns the box in the image plane.
    /// \returns left edge, top edge, width and height, pixels.
    // The const return type is part of the interface.
    // NOLINTNEXTLINE(readability-const-return-type)
    const cv::Rect_<float> get2DBoundingBox() const;

    /// Returns width times height.
    /// \returns square pixels.
    float getArea() const;

    /// Returns width divided by height.
    /// \returns the quotient.
    /// \note Not guarded: infinite for a height of 0, NaN for an empty box.
    float getAspectRatio() const;

    /// Returns the centre of the box.
    /// \returns x and y, pixels.
    cv::Point_<float> getCenter() const;
};

}  // namespace kelvora
