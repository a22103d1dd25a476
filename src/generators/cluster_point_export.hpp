// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <opencv2/core/mat.hpp>
#include <vector>

#include "generators/point_scales.hpp"
#include "kelvora/kd_point.hpp"

/// \file
/// Returns the points of clusters to the caller, in several formats.
///
/// Members without a point, as after a reset, are left out.

namespace kelvora {

/// The points of one cluster, divided by `scales` unless it is null.
template <int DIM, typename T>
std::vector<KDPoint<DIM, T>> memberPoints(const std::vector<std::size_t>& members,
                                          const std::vector<KDPoint<DIM, T>>& points,
                                          const PointScales* scales) {
    std::vector<KDPoint<DIM, T>> result;
    result.reserve(members.size());
    for (const std::size_t member : members) {
        if (member >= points.size()) {
            continue;
        }
        KDPoint<DIM, T> point = points[member];
        for (std::size_t axis = 0; scales != nullptr && axis < DIM; ++axis) {
            point.coordinates[axis] /= static_cast<T>(scales->of(axis));
        }
        result.push_back(point);
    }
    return result;
}

/// A matrix with one row per point. It owns its data.
///
/// \param channels  1: DIM columns of single numbers. DIM: one column of points.
template <int DIM, typename T>
cv::Mat toMatrix(const std::vector<KDPoint<DIM, T>>& points, int channels) {
    cv::Mat matrix(static_cast<int>(points.size()), DIM / channels,
                   CV_MAKETYPE(cv::DataType<T>::depth, channels));
    for (std::size_t row = 0; row < points.size(); ++row) {
        std::copy(points[row].coordinates.begin(), points[row].coordinates.end(),
                  matrix.ptr<T>(static_cast<int>(row)));
    }
    return matrix;
}

/// Appends a vector of points for each cluster.
template <int DIM, typename T>
void exportPoints(const std::vector<std::vector<std::size_t>>& clusters,
                  const std::vector<KDPoint<DIM, T>>& points, const PointScales* scales,
                  std::vector<std::vector<KDPoint<DIM, T>>>& result) {
    for (const std::vector<std::size_t>& members : clusters) {
        result.push_back(memberPoints(members, points, scales));
    }
}

/// Appends a matrix for each cluster: a row per point, a column per coordinate.
template <int DIM, typename T>
void exportPoints(const std::vector<std::vector<std::size_t>>& clusters,
                  const std::vector<KDPoint<DIM, T>>& points, const PointScales* scales,
                  std::vector<cv::Mat>& result) {
    for (const std::vector<std::size_t>& members : clusters) {
        result.push_back(toMatrix(memberPoints(members, points, scales), 1));
    }
}

/// Replaces a matrix by the points of all clusters, one after the other: a column of points.
template <int DIM, typename T>
void exportPoints(const std::vector<std::vector<std::size_t>>& clusters,
                  const std::vector<KDPoint<DIM, T>>& points, const PointScales* scales,
                  cv::Mat& result) {
    std::vector<KDPoint<DIM, T>> all;
    for (const std::vector<std::size_t>& members : clusters) {
        const auto cluster = memberPoints(members, points, scales);
        all.insert(all.end(), cluster.begin(), cluster.end());
    }
    result = toMatrix(all, DIM);
}

}  // namespace kelvora
