// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "command_line/clustering_method.hpp"
#include "command_line/track_options.hpp"
#include "kelvora/cluster_tracker.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// Clusters one window after another, and tracks objects across them.
class WindowClusterer {
public:
    /// \param window_length_  Microseconds.
    WindowClusterer(std::unique_ptr<ClusteringMethod> method_, const TrackOptions& track,
                    std::uint64_t window_length_);

    /// The clusters of the next window. Valid until the next call.
    const WindowClusters& cluster(const recording::Window& window);

    std::uint64_t windowCount() const { return window_count; }
    std::uint64_t clusterCount() const { return cluster_count; }

    /// A remark for the user about the windows, or an empty string.
    std::string remark() const { return method->remark(); }

private:
    void track(std::uint64_t windows_skipped);

    std::unique_ptr<ClusteringMethod> method;
    std::optional<ClusterTracker> tracker;
    int longest_gap;  ///< Number of empty windows that end all tracks.
    std::uint64_t window_length;
    WindowClusters found;
    std::optional<std::uint64_t> first_start;
    std::uint64_t window_count = 0;
    std::uint64_t cluster_count = 0;
};

}  // namespace kelvora::tool
