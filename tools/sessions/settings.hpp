// SPDX-License-Identifier: MIT
#pragma once

#include <limits>
#include <optional>
#include <string>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "kelvora/cluster_tracker.hpp"
#include "kelvora/density_based_cluster_generator.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"
#include "sessions/duration.hpp"
#include "sessions/polarity.hpp"

/// \file
/// The settings of a session. `parameters.hpp` has their names, units and ranges. The defaults of
/// the methods come from the library, other defaults are written here only.

namespace kelvora::tool {

/// Which events of a recording are clustered, and how they are grouped into windows.
struct WindowSettings {
    Duration window{10'000};
    Duration from;
    std::optional<Duration> to;  ///< If absent, the end of the recording.
    Polarity polarity = Polarity::All;
    unsigned long long max_window_events = 0;  ///< If 0, as many as fit into the memory.
    unsigned long long max_memory = 0;         ///< Megabytes. If 0, see `InputBounds`.
};

/// Parameters of the grid method.
struct GridSettings {
    using Defaults = GridBasedClusterGeneratorOptions;

    int cell_width = Defaults().cell_width;
    int cell_height = Defaults().cell_height;
    int max_cluster_size = Defaults().max_cluster_size;
    int min_cluster_size = Defaults().min_cluster_size;
    bool count_every_event = !Defaults().count_pixel_once;
    unsigned short activation_threshold = Defaults().activation_threshold;
};

enum class Precision { Float, Double };

/// Factors that turn pixels and microseconds into the coordinates of points.
struct EventScales {
    float x;
    float y;
    float time;
};

/// Which events become points, and how, for the methods that cluster points.
struct PointSettings {
    static constexpr auto kUnbounded = std::numeric_limits<unsigned long long>::max();

    int dim = 2;
    float scale_x = 1.0F;
    float scale_y = 1.0F;
    std::optional<float> scale_time;  ///< Instead of `us_per_pixel`.
    double us_per_pixel = 1000.0;
    unsigned long long capacity = kUnbounded;
    std::optional<Duration> time_length;
    Precision precision = Precision::Float;
    bool keep_zero_boxes = false;

    EventScales scales() const {
        return {scale_x, scale_y, scale_time.value_or(static_cast<float>(1.0 / us_per_pixel))};
    }

    /// Window of the event counter, microseconds.
    unsigned long long timeLength() const {
        return time_length ? time_length->microseconds : kUnbounded;
    }
};

/// The longest window in three dimensions. Times within it are 32-bit microseconds.
constexpr Duration kLongestWindowIn3d{1'800'000'000};

/// Parameters of the density method.
struct DensitySettings {
    using Defaults = DensityBasedClusterGeneratorOptions;

    double eps = Defaults().eps;
    int min_pts = Defaults().min_pts;
    int jobs = Defaults().n_jobs;
};

/// Parameters of the centroid method.
struct CentroidSettings {
    using Defaults = CentroidBasedClusterGeneratorOptions;

    unsigned long long clusters = Defaults().k_clusters;
    unsigned long long max_iter = Defaults().max_iter;
    double tol = Defaults().tol;
};

/// How to track objects from window to window.
struct TrackSettings {
    bool is_wanted = false;
    float max_distance = ClusterTracker::kDefaultMaxDistance;
    float max_size_change = ClusterTracker::kDefaultMaxSizeChange;
    int max_missed = ClusterTracker::kDefaultMaxMissed;
    int min_hits = ClusterTracker::kDefaultMinHits;

    ClusterTracker makeTracker() const {
        return ClusterTracker(max_distance, max_size_change, max_missed, min_hits);
    }
};

/// All settings of a session. A method reads its own group only.
struct Settings {
    std::string method = "grid";
    WindowSettings windows;
    GridSettings grid;
    PointSettings point;
    DensitySettings density;
    CentroidSettings centroid;
    TrackSettings track;
};

}  // namespace kelvora::tool
