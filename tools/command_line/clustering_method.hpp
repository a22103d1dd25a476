// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// Finds the clusters of one window after the other.
class ClusteringMethod {
public:
    ClusteringMethod() = default;
    ClusteringMethod(const ClusteringMethod&) = delete;
    ClusteringMethod& operator=(const ClusteringMethod&) = delete;
    virtual ~ClusteringMethod() = default;

    /// \param window  Events on the sensor and of the wanted polarity. Its end becomes the
    ///     timestamp of the clusters.
    /// \param clusters  Emptied first.
    virtual void cluster(const recording::Window& window,
                         std::vector<ClusterGeometry>& clusters) = 0;
};

}  // namespace kelvora::tool
