// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace kelvora::scoring {

/// Figures of how well clusters match the truth.
///
/// Ratios with a denominator of 0 are absent, as are figures about identities if clusters have no
/// tracks.
struct ScoreFigures {
    bool has_tracks = false;
    std::uint64_t frames = 0;
    std::uint64_t objects = 0;           ///< True boxes that count.
    std::uint64_t ignored_objects = 0;   ///< True boxes that need not be found.
    std::uint64_t clusters = 0;          ///< All clusters.
    std::uint64_t ignored_clusters = 0;  ///< Clusters that show an ignored object.
    std::uint64_t matches = 0;           ///< Objects with a cluster.
    double iou_sum = 0.0;                ///< Intersections over unions of the matches.
    std::uint64_t switches = 0;          ///< Changes of the track of an object.
    std::uint64_t fragmentations = 0;    ///< Times that an object was lost and found again.

    std::uint64_t trajectories = 0;       ///< Objects that count at some time.
    std::uint64_t mostly_tracked = 0;     ///< Matched in at least 80 % of their frames.
    std::uint64_t partially_tracked = 0;  ///< Matched in at least 20 %, but less than 80 %.
    std::uint64_t mostly_lost = 0;        ///< Matched in less than 20 %.

    std::uint64_t misses() const { return objects - matches; }
    std::uint64_t falsePositives() const { return clusters - ignored_clusters - matches; }

    /// Share of the clusters that match an object, not counting clusters on ignored objects.
    std::optional<double> precision() const;

    /// Share of the objects with a cluster.
    std::optional<double> recall() const;

    /// Multiple object tracking accuracy: 1 - (misses + false positives + switches) / objects; may
    /// be negative. Without tracks there are no switches, and the figure is called multiple object
    /// detection accuracy.
    std::optional<double> mota() const;

    /// Multiple object tracking precision: mean intersection over union of the matches.
    std::optional<double> motp() const;

    /// Switches per ten seconds of an object's lifetime.
    ///
    /// \param interval_us  Time between two frames.
    std::optional<double> switchesPerTenSeconds(std::uint64_t interval_us) const;
};

}  // namespace kelvora::scoring
