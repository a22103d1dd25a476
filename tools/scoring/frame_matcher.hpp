// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "scoring/frame.hpp"
#include "scoring/overlaps.hpp"

namespace kelvora::scoring {

/// An object and its cluster, as indices into the frame.
struct Match {
    std::size_t object;
    std::size_t cluster;
    double iou;
};

/// Matches the objects of one frame with its clusters, each at most once.
class FrameMatcher {
public:
    /// A group of so many overlapping boxes takes about a second.
    static constexpr std::size_t kMostPairs = 500'000;

    /// \param frame_  Must outlive the matcher.
    /// \param min_iou_  Minimum intersection over union of a match, above 0.
    /// \param most_pairs_  Most pairs of an object and a cluster to compare at the same time.
    FrameMatcher(const Frame& frame_, double min_iou_, std::size_t most_pairs_ = kMostPairs);

    /// Matches an unmatched object with the cluster of a track, if that exists, is free, and
    /// overlaps enough.
    void matchWithTrack(std::size_t object, std::uint64_t track);

    /// Matches as many of these objects as possible with free clusters, with the largest sum of
    /// intersections over unions. Existing matches are kept.
    ///
    /// \throws TooManyOverlaps  if that takes too many pairs.
    void matchAll(const std::vector<std::size_t>& objects);

    /// The matches, in the order in which they were made.
    const std::vector<Match>& matches() const { return made; }

private:
    void matchGroup(const std::vector<Overlap>& group, const std::vector<std::size_t>& objects,
                    const std::vector<std::size_t>& clusters);
    double iou(std::size_t object, std::size_t cluster) const;
    void match(std::size_t object, std::size_t cluster);

    const Frame& frame;
    double min_iou;
    std::size_t most_pairs;
    std::vector<bool> is_matched;  ///< One per object.
    std::vector<bool> is_taken;    ///< One per cluster.
    /// Clusters by their tracks, ascending; empty until it is needed.
    std::vector<std::pair<std::uint64_t, std::size_t>> by_track;
    std::vector<std::optional<std::size_t>>
        cluster_of;  ///< Of the objects that `matchAll` matches.
    std::vector<Match> made;
};

}  // namespace kelvora::scoring
