// SPDX-License-Identifier: MIT
#include "kelvora/cluster_geometry.hpp"

namespace kelvora {

namespace {

// Keeping only the low 32 bits of a 64-bit time is part of the interface.
int lowBits(unsigned long long value) {
    return static_cast<int>(static_cast<unsigned int>(value));
}

}  // namespace

// The box is not initialised, to save time for generators and callers that fill vectors of records.
// If the constructor were defaulted in the class, `{}` would zero the box.
// NOLINTNEXTLINE(modernize-use-equals-default)
ClusterGeometry::ClusterGeometry() {}

ClusterGeometry::ClusterGeometry(const cv::Rect_<float>& rect, unsigned long long timestamp_)
    : ClusterGeometry(rect.x, rect.y, rect.width, rect.height, timestamp_) {}

ClusterGeometry::ClusterGeometry(const cv::Rect_<float>& rect, unsigned long long start_time_,
                                 unsigned long long duration_, unsigned long long timestamp_)
    : ClusterGeometry(rect.x, rect.y, rect.width, rect.height, lowBits(start_time_),
                      lowBits(duration_), timestamp_) {}

ClusterGeometry::ClusterGeometry(float x_, float y_, float width_, float height_,
                                 unsigned long long timestamp_)
    : ClusterGeometry(x_, y_, width_, height_, -1, 0, timestamp_) {}

ClusterGeometry::ClusterGeometry(float x_, float y_, float width_, float height_, int start_time_,
                                 int duration_, unsigned long long timestamp_)
    : ClusterGeometry(x_, y_, 0, width_, height_, 0, start_time_, duration_, timestamp_) {}

ClusterGeometry::ClusterGeometry(float x_, float y_, unsigned long long z_, float width_,
                                 float height_, unsigned long long depth_, int start_time_,
                                 int duration_, unsigned long long timestamp_)
    : x(x_),
      y(y_),
      z(z_),
      width(width_),
      height(height_),
      depth(depth_),
      start_time(start_time_),
      duration(duration_),
      timestamp(timestamp_) {}

ClusterGeometry& ClusterGeometry::operator=(const ClusterGeometry&) = default;
ClusterGeometry& ClusterGeometry::operator=(ClusterGeometry&&) noexcept = default;

// NOLINTNEXTLINE(readability-const-return-type): part of the interface.
const cv::Rect_<float> ClusterGeometry::get2DBoundingBox() const {
    return {x, y, width, height};
}

float ClusterGeometry::getArea() const {
    return width * height;
}

float ClusterGeometry::getAspectRatio() const {
    return width / height;
}

cv::Point_<float> ClusterGeometry::getCenter() const {
    return {x + width * 0.5F, y + height * 0.5F};
}

}  // namespace kelvora
