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

/// Clusters window after window, and follows objects from one to the next.
class WindowClusterer {
public:
    /// \param window_length_  Microseconds.
    WindowClusterer(std::unique_ptr<ClusteringMethod> method_, const TrackOptions& track,
                    std::uint64_t window_length_);

    /// What is in the next window. Valid until the next call.
    const WindowClusters& cluster(const recording::Window& window);

    std::uint64_t windowCount() const { return window_count; }
    std::uint64_t clusterCount() const { return cluster_count; }

    /// What the user should know of the windows, or nothing.
    std::string remark() const { return method->remark(); }

private:
    void track(std::uint64_t windows_skipped);

    std::unique_ptr<ClusteringMethod> method;
    std::optional<ClusterTracker> tracker;
    int longest_gap;  ///< Empty windows that end all tracks.
    std::uint64_t window_length;
    WindowClusters found;
    std::optional<std::uint64_t> first_start;
    std::uint64_t window_count = 0;
    std::uint64_t cluster_count = 0;
};

}  // namespace kelvora::tool
