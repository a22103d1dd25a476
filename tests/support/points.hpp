// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "kelvora/density_clustering.hpp"
#include "kelvora/kd_point.hpp"
#include "support/event_builders.hpp"

/// \file
/// Sets of points of every kind, and their clusters.

namespace kelvora::test {

/// The two template parameters of all code that works on points, as one type.
template <int dimension, typename Coordinate>
struct PointKind {
    static constexpr int kDim = dimension;
    using T = Coordinate;
    using Point = KDPoint<dimension, Coordinate>;
    using Points = std::vector<Point>;
};

using PointKinds = ::testing::Types<PointKind<2, float>, PointKind<2, double>, PointKind<3, float>,
                                    PointKind<3, double>>;

/// Names of the kinds for the names of tests.
struct PointKindNames {
    template <class Kind>
    static std::string GetName(int) {
        return std::to_string(Kind::kDim) +
               (std::is_same_v<typename Kind::T, float> ? "dFloat" : "dDouble");
    }
};

/// A point; the third coordinate is dropped in two dimensions.
template <class Kind>
typename Kind::Point at(double x, double y = 0, double z = 0) {
    const std::array<double, 3> values = {x, y, z};
    typename Kind::Point point;
    std::transform(values.begin(), values.begin() + Kind::kDim, point.coordinates.begin(),
                   [](double value) { return static_cast<typename Kind::T>(value); });
    return point;
}

/// Points on the x axis.
template <class Kind>
typename Kind::Points line(const std::vector<double>& xs) {
    typename Kind::Points points;
    for (const double x : xs) {
        points.push_back(at<Kind>(x));
    }
    return points;
}

/// Points with whole coordinates in [low, low + side), times `unit`.
template <class Kind>
typename Kind::Points randomGridPoints(Random& random, std::size_t count, int low, int side,
                                       double unit) {
    const auto coordinate = [&] { return unit * randomInt(random, low, low + side - 1); };
    typename Kind::Points points(count);
    for (auto& point : points) {
        const double x = coordinate();
        const double y = coordinate();
        point = at<Kind>(x, y, coordinate());
    }
    return points;
}

/// Member lists and boxes of clusters.
template <typename T>
struct Clustering {
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
};

template <typename T>
bool operator==(const Clustering<T>& a, const Clustering<T>& b) {
    return a.clusters == b.clusters && a.boxes == b.boxes;
}

template <typename T>
std::ostream& operator<<(std::ostream& out, const Clustering<T>& clustering) {
    return out << "clusters " << ::testing::PrintToString(clustering.clusters) << " boxes "
               << ::testing::PrintToString(clustering.boxes);
}

/// The clusters found by the library.
template <class Kind>
Clustering<typename Kind::T> clusterPoints(const typename Kind::Points& points, double eps,
                                           int min_pts, int n_jobs) {
    DensityClustering<Kind::kDim, typename Kind::T> clustering(eps, min_pts);
    Clustering<typename Kind::T> result;
    clustering.generateClustersMultiThread(points, result.clusters, result.boxes,
                                           static_cast<unsigned char>(n_jobs));
    return result;
}

/// The same clusters in the same order, each with ascending members.
template <typename T>
Clustering<T> withAscendingMembers(Clustering<T> clustering) {
    for (auto& members : clustering.clusters) {
        std::sort(members.begin(), members.end());
    }
    return clustering;
}

/// The same clusters in the order of their first members.
template <typename T>
Clustering<T> inOrderOfFirstMembers(const Clustering<T>& clustering) {
    std::vector<std::size_t> order(clustering.clusters.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return clustering.clusters[a] < clustering.clusters[b];
    });
    Clustering<T> sorted;
    for (const std::size_t cluster : order) {
        sorted.clusters.push_back(clustering.clusters[cluster]);
        sorted.boxes.push_back(clustering.boxes[cluster]);
    }
    return sorted;
}

}  // namespace kelvora::test
