// SPDX-License-Identifier: MIT
#pragma once

#include "reference/brute_force_density_clustering.hpp"
#include "reference/density_clustering.hpp"
#include "support/points.hpp"

/// \file
/// The clusters that the models of density clustering find.

namespace kelvora::test {

/// The result of a model.
template <template <int, typename> class Model, class Kind>
Clustering<typename Kind::T> clusterWithModel(const typename Kind::Points& points, double eps,
                                              int min_pts, int n_jobs) {
    Model<Kind::kDim, typename Kind::T> model(eps, min_pts);
    Clustering<typename Kind::T> result;
    model.generateClusters(points, result.clusters, result.boxes,
                           static_cast<unsigned char>(n_jobs));
    return result;
}

/// The result of following the rules step by step.
template <class Kind>
Clustering<typename Kind::T> literalClusters(const typename Kind::Points& points, double eps,
                                             int min_pts, int n_jobs) {
    return clusterWithModel<reference::DensityClustering, Kind>(points, eps, min_pts, n_jobs);
}

/// The result by definition with one job.
template <class Kind>
Clustering<typename Kind::T> modelOfOneJob(const typename Kind::Points& points, double eps,
                                           int min_pts) {
    return clusterWithModel<reference::BruteForceDensityClustering, Kind>(points, eps, min_pts, 1);
}

/// The result by definition with several jobs.
template <class Kind>
Clustering<typename Kind::T> modelOfManyJobs(const typename Kind::Points& points, double eps,
                                             int min_pts) {
    return clusterWithModel<reference::BruteForceDensityClustering, Kind>(points, eps, min_pts, 2);
}

}  // namespace kelvora::test
