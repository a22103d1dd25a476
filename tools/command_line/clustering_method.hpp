// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/cluster_tracker.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// Label of an event that belongs to no cluster.
constexpr int kNoCluster = -1;

/// The mean of a cluster's events, in pixels and microseconds.
struct ClusterCentroid {
    double x;
    double y;
    std::optional<double> time_us;  ///< Same origin as the clusters' start times.
    unsigned long long size;        ///< Number of events.
};

/// The clusters found in one window.
struct WindowClusters {
    /// Number of the window. The first window with events is 1; later empty windows count too.
    std::uint64_t number = 1;

    std::vector<ClusterGeometry> clusters;

    /// Origin of the clusters' start times, microseconds.
    std::uint64_t time_origin = 0;

    /// For each event of the window, the index of its cluster or `kNoCluster`. Empty if the method
    /// does not provide labels.
    std::vector<int> labels;

    /// The centroid of each cluster. Empty if the method has no centroids.
    std::vector<ClusterCentroid> centroids;

    /// The tracked objects, if tracking is on. Clustering methods do not change them.
    std::vector<ClusterTracker::Track> tracks;
};

/// Finds the clusters of each window in turn.
class ClusteringMethod {
public:
    ClusteringMethod() = default;
    ClusteringMethod(const ClusteringMethod&) = delete;
    ClusteringMethod& operator=(const ClusteringMethod&) = delete;
    virtual ~ClusteringMethod() = default;

    /// \param window  Events on the sensor, of the selected polarity. The end of the window becomes
    ///     the timestamp of the clusters.
    /// \param found  Overwritten.
    virtual void cluster(const recording::Window& window, WindowClusters& found) = 0;

    /// A remark for the user about the windows so far, or an empty string.
    virtual std::string remark() const { return {}; }
};

}  // namespace kelvora::tool
