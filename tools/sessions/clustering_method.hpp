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
    std::optional<double> time_us;  ///< After `time_origin`.
    unsigned long long size;        ///< Number of events.
};

/// The events of a cluster.
struct ClusterExtent {
    std::int64_t start_time = -1;  ///< Time of the first event, microseconds; -1 if unknown.
    std::int64_t duration = 0;     ///< From the first event to the last, microseconds.
    std::int64_t events = -1;      ///< Number of events; -1 if unknown.
};

/// The clusters found in one window.
struct WindowClusters {
    /// Number of the window. The first window with events is 1; later empty windows count too.
    std::uint64_t number = 1;

    /// Origin of the centroids' times, microseconds.
    std::uint64_t time_origin = 0;

    /// Boxes. Use the times of `extents`: the times of a box are rounded, and relative.
    std::vector<ClusterGeometry> clusters;

    /// The events of each cluster.
    std::vector<ClusterExtent> extents;

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
    /// \param found  `clusters`, `labels` and `centroids` are overwritten.
    virtual void cluster(const recording::Window& window, WindowClusters& found) = 0;

    /// Takes events of the next window early, if the method need not see a window as a whole.
    ///
    /// \returns false if `cluster` must be given these events, too.
    virtual bool takeEarly(const recording::Window& /*events*/) { return false; }

    /// A remark for the user about the windows so far, or an empty string.
    virtual std::string remark() const { return {}; }
};

}  // namespace kelvora::tool
