// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scoring/frame.hpp"

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
    /// \param frame_  Must outlive the matcher.
    /// \param min_iou_  Minimum intersection over union of a match, above 0.
    FrameMatcher(const Frame& frame_, double min_iou_);

    /// Matches an unmatched object with the cluster of a track, if that exists, is free, and
    /// overlaps enough.
    void matchWithTrack(std::size_t object, std::uint64_t track);

    /// Matches as many of these objects as possible with free clusters, with the largest sum of
    /// intersections over unions. Existing matches are kept.
    void matchAll(const std::vector<std::size_t>& objects);

    /// The matches, in the order in which they were made.
    const std::vector<Match>& matches() const { return made; }

private:
    double iou(std::size_t object, std::size_t cluster) const;
    void match(std::size_t object, std::size_t cluster);

    const Frame& frame;
    double min_iou;
    std::vector<bool> is_matched;  ///< One per object.
    std::vector<bool> is_taken;    ///< One per cluster.
    std::vector<Match> made;
};

}  // namespace kelvora::scoring
