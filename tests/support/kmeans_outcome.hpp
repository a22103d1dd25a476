// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <ostream>
#include <vector>

#include "kelvora/centroid_clustering.hpp"
#include "reference/centroid_clustering.hpp"
#include "support/points.hpp"

/// \file
/// The results of k-means, of the library and of its model, to be compared bit for bit.

namespace kelvora::test {

/// All results of a run of centroid clustering.
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

/// The results of a library object, including its getters.
template <class Kind>
KMeansOutcome<Kind> outcomeOf(CentroidClustering<Kind::kDim, typename Kind::T>& clustering,
                              const typename Kind::Points& points) {
    KMeansOutcome<Kind> outcome;
    clustering.generateClusters(points, outcome.clustering.clusters, outcome.clustering.boxes);
    clustering.getCentroids(outcome.centroids);
    clustering.getNumPointsPerCluster(outcome.counts);
    return outcome;
}

/// The results of a new library object.
template <class Kind>
KMeansOutcome<Kind> kMeansOf(const typename Kind::Points& points, std::size_t k,
                             std::size_t max_iter = 20, double tol = 1e-9) {
    CentroidClustering<Kind::kDim, typename Kind::T> clustering(k, max_iter, tol);
    return outcomeOf<Kind>(clustering, points);
}

/// A run of the model from a given point as first centroid.
template <class Kind>
struct KMeansModelRun {
    KMeansModelRun(const typename Kind::Points& points, std::size_t k, std::size_t max_iter,
                   double tol, std::size_t first)
        : model(k, max_iter, tol) {
        model.generateClustersFrom(first, points, outcome.clustering.clusters,
                                   outcome.clustering.boxes);
        outcome.centroids = model.getCentroids();
        outcome.counts = model.getNumPointsPerCluster();
    }

    std::size_t iterations() const { return model.getChangesOfTotal().size(); }

    reference::CentroidClustering<Kind::kDim, typename Kind::T> model;
    KMeansOutcome<Kind> outcome;
};

}  // namespace kelvora::test
