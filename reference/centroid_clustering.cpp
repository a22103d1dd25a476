// SPDX-License-Identifier: MIT
#include "reference/centroid_clustering.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "reference/kd_tree.hpp"

namespace kelvora::reference {

template <int DIM, typename T>
CentroidClustering<DIM, T>::CentroidClustering(std::size_t k_, std::size_t max_iter_, double tol_)
    : k(k_), max_iter(max_iter_), tol(tol_), num_points_per_cluster(k_, 0) {}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::generateClusters(const std::vector<Point>& points,
                                                  std::vector<std::vector<std::size_t>>& clusters,
                                                  std::vector<std::vector<T>>& cluster_boxes) {
    std::random_device device;
    std::mt19937 generator(device());
    std::uniform_int_distribution<std::size_t> any(0, points.size() - 1);
    generateClustersFrom(any(generator), points, clusters, cluster_boxes);
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::generateClustersFrom(
    std::size_t first, const std::vector<Point>& points,
    std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& cluster_boxes) {
    clusters.clear();
    cluster_boxes.clear();
    furthestPointSample(first, points);
    labels.resize(points.size());
    iterate(points);
    report(points, clusters, cluster_boxes);
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::furthestPointSample(std::size_t first,
                                                     const std::vector<Point>& points) {
    centroids.clear();
    centroids.reserve(k);
    centroids.push_back(points[first]);
    std::vector<float> distances(points.size(), std::numeric_limits<float>::max());
    for (std::size_t i = 0; i < points.size(); ++i) {
        distances[i] = static_cast<float>(points[i].euclideanDistance(centroids[0]));
    }
    for (std::size_t c = 1; c < k; ++c) {
        float largest = 0.0F;
        std::size_t chosen = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (distances[i] > largest) {
                largest = distances[i];
                chosen = i;
            }
        }
        centroids.push_back(points[chosen]);
        for (std::size_t i = 0; i < points.size(); ++i) {
            distances[i] = std::min(distances[i],
                                    static_cast<float>(points[i].euclideanDistance(centroids[c])));
        }
    }
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::iterate(const std::vector<Point>& points) {
    std::vector<Point> sums;
    changes_of_total.clear();
    has_moved_far = false;
    double previous_total = std::numeric_limits<double>::max();
    for (std::size_t iteration = 0; iteration < max_iter; ++iteration) {
        const double total = assignPoints(points, sums);
        const bool none_was_empty = moveCentroids(points, sums);
        changes_of_total.push_back(std::abs(total - previous_total));
        if (none_was_empty && tol > changes_of_total.back()) {
            return;
        }
        previous_total = total;
    }
}

template <int DIM, typename T>
double CentroidClustering<DIM, T>::assignPoints(const std::vector<Point>& points,
                                                std::vector<Point>& sums) {
    centroids_of_labels = centroids;
    const KDTree<DIM, T> tree(centroids_of_labels);
    double total = 0.0;
    sums.assign(k, Point());
    std::fill(num_points_per_cluster.begin(), num_points_per_cluster.end(), 0);
    std::vector<std::size_t> indices;
    std::vector<T> squared_distances;
    for (std::size_t i = 0; i < points.size(); ++i) {
        tree.nearest(indices, squared_distances, points[i]);
        labels[i] = indices[0];
        total += static_cast<double>(squared_distances[0]);
        ++num_points_per_cluster[indices[0]];
        sums[indices[0]] += points[i];
    }
    return total;
}

template <int DIM, typename T>
bool CentroidClustering<DIM, T>::moveCentroids(const std::vector<Point>& points,
                                               std::vector<Point>& sums) {
    bool none_was_empty = true;
    for (std::size_t c = 0; c < k; ++c) {
        if (num_points_per_cluster[c] != 0) {
            centroids[c] = sums[c] / static_cast<T>(num_points_per_cluster[c]);
        } else {
            none_was_empty = false;
            centroids[c] = points[furthestFromCentroid(points)];
        }
    }
    return none_was_empty;
}

template <int DIM, typename T>
std::size_t CentroidClustering<DIM, T>::furthestFromCentroid(const std::vector<Point>& points) {
    double largest = 0.0;
    std::size_t chosen = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double distance = points[i].euclideanDistance(centroids[labels[i]]);
        if (distance > largest) {
            largest = distance;
            chosen = i;
        }
    }
    has_moved_far = has_moved_far || largest > 0.0;
    return chosen;
}

template <int DIM, typename T>
void CentroidClustering<DIM, T>::report(const std::vector<Point>& points,
                                        std::vector<std::vector<std::size_t>>& clusters,
                                        std::vector<std::vector<T>>& cluster_boxes) const {
    std::vector<T> empty_box(DIM, std::numeric_limits<T>::max());
    empty_box.resize(2 * DIM, std::numeric_limits<T>::lowest());
    clusters.resize(k);
    cluster_boxes.assign(k, empty_box);
    for (std::size_t i = 0; i < points.size(); ++i) {
        clusters[labels[i]].push_back(i);
        std::vector<T>& box = cluster_boxes[labels[i]];
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            box[axis] = std::min(box[axis], points[i].coordinates[axis]);
            box[axis + DIM] = std::max(box[axis + DIM], points[i].coordinates[axis]);
        }
    }
    for (std::vector<T>& box : cluster_boxes) {
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            box[axis + DIM] -= box[axis];
        }
    }
}

template class CentroidClustering<2, float>;
template class CentroidClustering<2, double>;
template class CentroidClustering<3, float>;
template class CentroidClustering<3, double>;

}  // namespace kelvora::reference
