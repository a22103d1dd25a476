// SPDX-License-Identifier: MIT
#include "kelvora/centroid_clustering.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

#include "clustering/furthest_point.hpp"
#include "clustering/nearest_centroid.hpp"
#include "clustering/point_box.hpp"

namespace kelvora {

namespace {

/// Draws an index below `count`, uniformly and differently in each run of a program.
std::size_t drawIndex(std::size_t count) {
    std::random_device seed;
    std::mt19937 generator(seed());
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(generator);
}

/// Minima and maxima of no points: any point widens this box.
template <int DIM, typename T>
std::vector<T> emptyBox() {
    std::vector<T> box(DIM, std::numeric_limits<T>::max());
    box.resize(2 * DIM, std::numeric_limits<T>::lowest());
    return box;
}

}  // namespace

template <int DIM, typename T>
CentroidClustering<DIM, T>::CentroidClustering(std::size_t k_, std::size_t max_iter_, double tol_)
    : k(k_), max_iter(max_iter_), tol(tol_), num_points_per_cluster(k_, 0) {
    if (k == 0) {
        throw std::runtime_error("CentroidClustering: k must be greater than 0");
    }
    if (max_iter == 0) {
        throw std::runtime_error("CentroidClustering: max_iter must be greater than 0");
    }
    if (0.0 >= tol) {
        throw std::runtime_error("CentroidClustering: tol must be greater than 0");
    }
}

template <int DIM, typename T>
CentroidClustering<DIM, T>::~CentroidClustering() = default;

template <int DIM, typename T>
void CentroidClustering<DIM, T>::generateClusters(const std::vector<Point>& points,
                                                  std::vector<std::vector<std::size_t>>& clusters,
                                                  std::vector<std::vector<T>>& cluster_boxes) {
    generateClustersPrivate(points, clusters, cluster_boxes);
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::getCentroids(std::vector<Point>& out) const {
    // Do not reserve k elements: k may have been set to more than fits in memory.
    out.assign(centroids.begin(), centroids.end());
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::getNumPointsPerCluster(std::vector<std::size_t>& out) const {
    out = num_points_per_cluster;
}

template <int DIM, typename T>
bool CentroidClustering<DIM, T>::setClusterNumber(std::size_t k_) {
    if (k_ == 0) {
        return false;
    }
    k = k_;
    return true;
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::generateClustersPrivate(
    const std::vector<Point>& points, std::vector<std::vector<std::size_t>>& clusters,
    std::vector<std::vector<T>>& cluster_boxes) {
    clusters.clear();
    cluster_boxes.clear();
    if (points.size() < k) {
        centroids.clear();
        return;
    }
    furthestPointSample(points, centroids);
    labels.resize(points.size());
    if (num_points_per_cluster.size() < k) {
        num_points_per_cluster.resize(k);
    }
    iterate(points);
    reportClusters(points, clusters, cluster_boxes);
}

/// Chooses k points as centroids: a random one, then repeatedly the one furthest from all chosen.
template <int DIM, typename T>
void CentroidClustering<DIM, T>::furthestPointSample(const std::vector<Point>& points,
                                                     std::vector<Point>& chosen) {
    chosen.clear();
    chosen.reserve(k);
    chosen.push_back(points[drawIndex(points.size())]);
    FurthestPoint<DIM, T> furthest(points, chosen.front());
    while (chosen.size() < k) {
        chosen.push_back(points[furthest.index()]);
        furthest.addCentroid(chosen.back());
    }
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::iterate(const std::vector<Point>& points) {
    NearestCentroid<DIM, T> nearest(points, k);
    std::vector<Point> sums;
    double previous_total = std::numeric_limits<double>::max();
    for (std::size_t iteration = 0; iteration < max_iter; ++iteration) {
        const double total = assignPoints(points, nearest, sums);
        const bool none_was_empty = moveCentroids(points, sums);
        if (none_was_empty && tol > std::abs(total - previous_total)) {
            break;
        }
        previous_total = total;
    }
}

/// Labels each point with its nearest centroid, and sums the points of each centroid. Returns the
/// sum of the squared distances.
template <int DIM, typename T>
double CentroidClustering<DIM, T>::assignPoints(const std::vector<Point>& points,
                                                NearestCentroid<DIM, T>& nearest,
                                                std::vector<Point>& sums) {
    sums.assign(k, Point());
    std::fill(num_points_per_cluster.begin(), num_points_per_cluster.end(), 0);
    nearest.setCentroids(centroids);
    bool tree_is_built = false;
    double total = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        auto found = nearest.find(points[i], i);
        if (found.is_tied) {
            if (!tree_is_built) {
                kd_tree.build(centroids, 1);
                tree_is_built = true;
            }
            kd_tree.knnSearchPoint(1, nearest_index, nearest_squared_distance, points[i]);
            found.index = nearest_index.front();
            found.squared_distance = nearest_squared_distance.front();
        }
        labels[i] = found.index;
        total += static_cast<double>(found.squared_distance);
        ++num_points_per_cluster[found.index];
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            sums[found.index].coordinates[axis] += points[i].coordinates[axis];
        }
    }
    return total;
}

/// Moves each centroid to the mean of its points. Returns whether every centroid had points.
template <int DIM, typename T>
bool CentroidClustering<DIM, T>::moveCentroids(const std::vector<Point>& points,
                                               std::vector<Point>& sums) {
    bool none_was_empty = true;
    for (std::size_t c = 0; c < k; ++c) {
        if (num_points_per_cluster[c] != 0) {
            centroids[c] = sums[c] / static_cast<T>(num_points_per_cluster[c]);
        } else {
            centroids[c] = furthestFromCentroid(points);
            none_was_empty = false;
        }
    }
    return none_was_empty;
}

/// Returns the point furthest from its own centroid, and the first of several. Some centroids may
/// have moved already.
template <int DIM, typename T>
const KDPoint<DIM, T>& CentroidClustering<DIM, T>::furthestFromCentroid(
    const std::vector<Point>& points) const {
    std::size_t furthest = 0;
    double largest = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double distance = points[i].euclideanDistance(centroids[labels[i]]);
        if (distance > largest) {
            largest = distance;
            furthest = i;
        }
    }
    return points[furthest];
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::reportClusters(const std::vector<Point>& points,
                                                std::vector<std::vector<std::size_t>>& clusters,
                                                std::vector<std::vector<T>>& cluster_boxes) const {
    clusters.resize(k);
    cluster_boxes.assign(k, emptyBox<DIM, T>());
    for (std::size_t i = 0; i < points.size(); ++i) {
        clusters[labels[i]].push_back(i);
        widenBox(cluster_boxes[labels[i]], points[i]);
    }
    for (std::vector<T>& box : cluster_boxes) {
        maximaToExtents<DIM>(box);
    }
}

template class CentroidClustering<2, float>;
template class CentroidClustering<2, double>;
template class CentroidClustering<3, float>;
template class CentroidClustering<3, double>;

}  // namespace kelvora
