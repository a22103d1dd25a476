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
    std::optional<double> time_us;  ///< From the same origin as the clusters' start times.
    unsigned long long size;        ///< Number of events.
};

/// What a method found in one window.
struct WindowClusters {
    /// Of the window, from 1 at the first one with events; windows without events count too.
    std::uint64_t number = 1;

    std::vector<ClusterGeometry> clusters;

    /// What the start times of the clusters count from, microseconds.
    std::uint64_t time_origin = 0;

    /// For each event of the window the index of its cluster, or `kNoCluster`. Empty if the method
    /// does not tell.
    std::vector<int> labels;

    /// The centroid of each cluster. Empty if the method knows none.
    std::vector<ClusterCentroid> centroids;

    /// The objects that are followed, if they are. Methods leave them alone.
    std::vector<ClusterTracker::Track> tracks;
};

/// Finds the clusters of one window after the other.
class ClusteringMethod {
public:
    ClusteringMethod() = default;
    ClusteringMethod(const ClusteringMethod&) = delete;
    ClusteringMethod& operator=(const ClusteringMethod&) = delete;
    virtual ~ClusteringMethod() = default;

    /// \param window  Events on the sensor and of the wanted polarity. Its end becomes the timestamp
    ///     of the clusters.
    /// \param found  What it holds is replaced.
    virtual void cluster(const recording::Window& window, WindowClusters& found) = 0;

    /// What the user should know of the windows so far, or nothing.
    virtual std::string remark() const { return {}; }
};

}  // namespace kelvora::tool
