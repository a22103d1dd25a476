// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace kelvora::scoring {

/// How well clusters agree with the truth.
///
/// Ratios whose denominator is 0 are absent, as are figures about identities where clusters belong
/// to no tracks.
struct ScoreFigures {
    bool has_tracks = false;
    std::uint64_t frames = 0;
    std::uint64_t objects = 0;           ///< True boxes that count.
    std::uint64_t ignored_objects = 0;   ///< True boxes that need not be found.
    std::uint64_t clusters = 0;          ///< All of them.
    std::uint64_t ignored_clusters = 0;  ///< Clusters that show an ignored object.
    std::uint64_t matches = 0;           ///< Objects that are shown by a cluster.
    double iou_sum = 0.0;                ///< Intersections over unions of the matches.
    std::uint64_t switches = 0;          ///< Changes of the track that shows an object.
    std::uint64_t fragmentations = 0;    ///< Times that an object was lost and found again.

    std::uint64_t trajectories = 0;       ///< Objects that count at some time.
    std::uint64_t mostly_tracked = 0;     ///< Those matched in 80 % of their frames or more.
    std::uint64_t partially_tracked = 0;  ///< Those matched in 20 % or more, but less than 80 %.
    std::uint64_t mostly_lost = 0;        ///< Those matched in less than 20 %.

    std::uint64_t misses() const { return objects - matches; }
    std::uint64_t falsePositives() const { return clusters - ignored_clusters - matches; }

    /// Share of the clusters that show an object, among those that show no ignored one.
    std::optional<double> precision() const;

    /// Share of the objects that are shown.
    std::optional<double> recall() const;

    /// Multiple object tracking accuracy: 1 - (misses + false positives + switches) / objects; may
    /// be negative. Without tracks there are no switches to count, and it is what is known as
    /// multiple object detection accuracy.
    std::optional<double> mota() const;

    /// Multiple object tracking precision: mean intersection over union of the matches.
    std::optional<double> motp() const;

    /// Switches in ten seconds of an object's life.
    ///
    /// \param interval_us  Time from one frame to the next.
    std::optional<double> switchesPerTenSeconds(std::uint64_t interval_us) const;
};

}  // namespace kelvora::scoring
