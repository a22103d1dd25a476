// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <nanoflann.hpp>
#include <ostream>
#include <vector>

#include "kelvora/centroid_clustering.hpp"
#include "support/points.hpp"

/// \file
/// K-means step by step, in the arithmetic that makes its results what they are, bit for bit.

namespace kelvora::test {

/// All that a run of centroid clustering leaves.
template <class Kind>
struct KMeansOutcome {
    Clustering<typename Kind::T> clustering;
    typename Kind::Points centroids;
    std::vector<std::size_t> counts;
};

template <typename Value>
bool sameBits(const std::vector<Value>& a, const std::vector<Value>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Value)) == 0);
}

/// Equal to the last bit.
template <class Kind>
bool operator==(const KMeansOutcome<Kind>& a, const KMeansOutcome<Kind>& b) {
    const auto& boxes = a.clustering.boxes;
    return a.clustering == b.clustering && a.counts == b.counts &&
           std::equal(boxes.begin(), boxes.end(), b.clustering.boxes.begin(),
                      [](const auto& box, const auto& other) { return sameBits(box, other); }) &&
           a.centroids.size() == b.centroids.size() &&
           std::equal(a.centroids.begin(), a.centroids.end(), b.centroids.begin(),
                      [](const auto& point, const auto& other) {
                          return std::memcmp(&point, &other, sizeof(point)) == 0;
                      });
}

template <class Kind>
std::ostream& operator<<(std::ostream& out, const KMeansOutcome<Kind>& outcome) {
    out << outcome.clustering << " centroids";
    for (const auto& centroid : outcome.centroids) {
        out << ' ' << ::testing::PrintToString(centroid.coordinates);
    }
    return out << " counts " << ::testing::PrintToString(outcome.counts);
}

/// What a library object finds, and what it tells afterwards.
template <class Kind>
KMeansOutcome<Kind> outcomeOf(CentroidClustering<Kind::kDim, typename Kind::T>& clustering,
                              const typename Kind::Points& points) {
    KMeansOutcome<Kind> outcome;
    clustering.generateClusters(points, outcome.clustering.clusters, outcome.clustering.boxes);
    clustering.getCentroids(outcome.centroids);
    clustering.getNumPointsPerCluster(outcome.counts);
    return outcome;
}

/// What a new library object finds.
template <class Kind>
KMeansOutcome<Kind> kMeansOf(const typename Kind::Points& points, std::size_t k,
                             std::size_t max_iter = 20, double tol = 1e-9) {
    CentroidClustering<Kind::kDim, typename Kind::T> clustering(k, max_iter, tol);
    return outcomeOf<Kind>(clustering, points);
}

/// The nearest of some places, found by nanoflann as it comes: which of several at the same distance
/// follows from the walk through the tree.
template <class Kind>
class NearestPlace {
public:
    using T = typename Kind::T;

    struct Answer {
        std::size_t index = 0;
        T squared_distance = 0;
    };

    explicit NearestPlace(const typename Kind::Points& places)
        : source{places}, tree(Kind::kDim, source, nanoflann::KDTreeSingleIndexAdaptorParams(10)) {}

    /// All zeros if no squared distance is finite.
    Answer to(const typename Kind::Point& point) const {
        Answer answer;
        tree.knnSearch(point.coordinates.data(), 1, &answer.index, &answer.squared_distance);
        return answer;
    }

private:
    struct Source {
        const typename Kind::Points& points;

        std::size_t kdtree_get_point_count() const { return points.size(); }
        T kdtree_get_pt(std::size_t i, std::size_t axis) const {
            return points[i].coordinates[axis];
        }
        template <class Box>
        bool kdtree_get_bbox(Box& /*box*/) const {
            return false;
        }
    };

    Source source;
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<T, Source, T, std::size_t>,
                                        Source, Kind::kDim, std::size_t>
        tree;
};

/// A run over finite points, at least `k` of them, from a given point as first centroid.
template <class Kind>
class LiteralKMeans {
public:
    using T = typename Kind::T;
    using Point = typename Kind::Point;

    LiteralKMeans(const typename Kind::Points& points_, std::size_t k_, std::size_t max_iter,
                  double tol, std::size_t first)
        : points(points_), k(k_), labels(points_.size()) {
        seed(first);
        double previous_total = std::numeric_limits<double>::max();
        for (std::size_t iteration = 0; iteration < max_iter; ++iteration) {
            const double total = assign();
            const bool any_was_empty = update();
            changes.push_back(std::fabs(total - previous_total));
            if (!any_was_empty && tol > changes.back()) {
                break;
            }
            previous_total = total;
        }
    }

    KMeansOutcome<Kind> outcome() const { return {clustering(), centroids, counts}; }

    /// The cluster of each point.
    const std::vector<std::size_t>& labelsOfPoints() const { return labels; }
    /// The centroids that the labels were found with, before they moved for the last time.
    const typename Kind::Points& centroidsOfLabels() const { return assigned_centroids; }
    std::size_t iterationsRun() const { return changes.size(); }
    /// By how much each iteration changed the sum of squared distances.
    const std::vector<double>& changesOfTotal() const { return changes; }
    /// Whether a cluster without points got a centroid that is at some distance from all others'.
    bool movedACentroidFar() const { return moved_far; }

private:
    static double distance(const Point& a, const Point& b) {
        double sum = 0.0;
        for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
            const T difference = a.coordinates[axis] - b.coordinates[axis];
            const T square = difference * difference;
            sum += static_cast<double>(square);
        }
        return std::sqrt(sum);
    }

    void seed(std::size_t first) {
        centroids.push_back(points[first]);
        std::vector<float> nearest;
        for (const Point& point : points) {
            nearest.push_back(static_cast<float>(distance(point, centroids[0])));
        }
        for (std::size_t c = 1; c < k; ++c) {
            float maximum = 0.0F;
            std::size_t chosen = 0;
            for (std::size_t i = 0; i < points.size(); ++i) {
                if (nearest[i] > maximum) {
                    maximum = nearest[i];
                    chosen = i;
                }
            }
            centroids.push_back(points[chosen]);
            for (std::size_t i = 0; i < points.size(); ++i) {
                const auto to_new = static_cast<float>(distance(points[i], centroids[c]));
                nearest[i] = to_new < nearest[i] ? to_new : nearest[i];
            }
        }
    }

    double assign() {
        assigned_centroids = centroids;
        const NearestPlace<Kind> nearest(assigned_centroids);
        double total = 0.0;
        sums.assign(k, at<Kind>(0));
        counts.assign(k, 0);
        for (std::size_t i = 0; i < points.size(); ++i) {
            const auto answer = nearest.to(points[i]);
            labels[i] = answer.index;
            total += static_cast<double>(answer.squared_distance);
            ++counts[labels[i]];
            for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
                sums[labels[i]].coordinates[axis] += points[i].coordinates[axis];
            }
        }
        return total;
    }

    /// Tells whether a cluster had no points.
    bool update() {
        bool any_was_empty = false;
        for (std::size_t c = 0; c < k; ++c) {
            for (std::size_t axis = 0; counts[c] != 0 && axis < Kind::kDim; ++axis) {
                centroids[c].coordinates[axis] =
                    sums[c].coordinates[axis] / static_cast<T>(counts[c]);
            }
            if (counts[c] == 0) {
                any_was_empty = true;
                centroids[c] = points[furthestFromItsCentroid()];
            }
        }
        return any_was_empty;
    }

    std::size_t furthestFromItsCentroid() {
        double maximum = 0.0;
        std::size_t chosen = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double own = distance(points[i], centroids[labels[i]]);
            if (own > maximum) {
                maximum = own;
                chosen = i;
            }
        }
        moved_far = moved_far || maximum > 0.0;
        return chosen;
    }

    Clustering<T> clustering() const {
        Clustering<T> result;
        for (std::size_t c = 0; c < k; ++c) {
            std::vector<std::size_t> members;
            std::array<T, Kind::kDim> low;
            std::array<T, Kind::kDim> high;
            low.fill(std::numeric_limits<T>::max());
            high.fill(-std::numeric_limits<T>::max());
            for (std::size_t i = 0; i < points.size(); ++i) {
                if (labels[i] == c) {
                    members.push_back(i);
                    for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
                        low[axis] = std::min(low[axis], points[i].coordinates[axis]);
                        high[axis] = std::max(high[axis], points[i].coordinates[axis]);
                    }
                }
            }
            std::vector<T> box(low.begin(), low.end());
            for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
                box.push_back(high[axis] - low[axis]);
            }
            result.clusters.push_back(members);
            result.boxes.push_back(box);
        }
        return result;
    }

    const typename Kind::Points& points;
    std::size_t k;
    typename Kind::Points centroids;
    typename Kind::Points assigned_centroids;
    typename Kind::Points sums;
    std::vector<std::size_t> labels;
    std::vector<std::size_t> counts;
    std::vector<double> changes;
    bool moved_far = false;
};

}  // namespace kelvora::test
