// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kelvora/cluster_tracker.hpp"
#include "kelvora/events.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"
#include "sessions/clustering_method.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Clusters one window after another, and tracks objects across them.
///
/// Give it whole windows, as a `WindowReader` returns them, or add events as they arrive and finish
/// windows at will. The results are the same.
class Session {
public:
    /// \throws std::runtime_error  if memory cannot be reserved.
    Session(const Settings& settings, recording::SensorSize sensor);

    /// Uses any method.
    Session(std::unique_ptr<ClusteringMethod> method_, const Settings& settings);

    /// The clusters of the next window. Valid until the next call.
    const WindowClusters& cluster(const recording::Window& window);

    /// Adds events of the next window, in time order.
    void add(const Event2D* events, std::size_t count);

    /// Ends the window of the added events, and returns its clusters. Valid until the next call.
    const WindowClusters& finishWindow(std::uint64_t end_time);

    /// The events of the window that was finished last, except with the grid method, which keeps no
    /// events.
    const std::vector<Event2D>& events() const { return finished; }

    const WindowClusters& clusters() const { return found; }
    std::uint64_t windowCount() const { return window_count; }
    std::uint64_t clusterCount() const { return cluster_count; }

    /// A remark for the user about the windows, or an empty string.
    std::string remark() const { return method->remark(); }

    /// The method, which has the type that its name states.
    template <class MethodT>
    MethodT& methodAs() {
        return dynamic_cast<MethodT&>(*method);
    }

private:
    void track(std::uint64_t windows_skipped);

    std::unique_ptr<ClusteringMethod> method;
    std::optional<ClusterTracker> tracker;
    int longest_gap;  ///< Number of empty windows that end all tracks.
    std::uint64_t window_length;
    bool keep_zero_boxes;
    WindowClusters found;
    std::vector<Event2D> pending;
    std::vector<Event2D> finished;
    std::optional<std::uint64_t> first_start;
    std::uint64_t window_count = 0;
    std::uint64_t cluster_count = 0;
};

}  // namespace kelvora::tool
