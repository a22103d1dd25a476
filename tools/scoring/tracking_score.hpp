// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "scoring/frame.hpp"
#include "scoring/frame_matcher.hpp"
#include "scoring/score_figures.hpp"

namespace kelvora::scoring {

struct ScoreOptions {
    double min_iou = 0.5;         ///< Minimum intersection over union of a match, in (0, 1].
    double min_visibility = 0.0;  ///< Less visible objects are ignored.
    bool include_still = false;   ///< Whether still objects count, too.
    bool has_tracks = false;      ///< Whether clusters belong to tracks.
    /// Most pairs of an object and a cluster to compare at the same time.
    std::size_t most_pairs = FrameMatcher::kMostPairs;
};

/// Compares clusters with the truth, frame by frame, according to K. Bernardin, R. Stiefelhagen:
/// "Evaluating Multiple Object Tracking Performance: The CLEAR MOT Metrics", EURASIP Journal on
/// Image and Video Processing, 2008.
///
/// An object keeps its track from the previous frame as long as the two overlap enough. The others
/// are matched so that there are as many matches as possible, with the largest sum of intersections
/// over unions.
///
/// An event camera does not see still objects. Objects that do not move or are hardly visible are
/// therefore ignored: they need not be found, and clusters that match them after all other objects
/// are matched are not false positives. Frames in which an object is ignored count neither as found
/// nor as lost.
class TrackingScore {
public:
    explicit TrackingScore(const ScoreOptions& options_);

    /// Adds a frame. Frames must be in time order, with each object and track at most once per
    /// frame.
    ///
    /// \throws TooManyOverlaps  if a frame has too many pairs.
    void add(const Frame& frame);

    /// The score of all frames so far.
    ScoreFigures figures() const;

private:
    /// The frames of an object in which it counts.
    struct Trajectory {
        std::uint64_t frames = 0;
        std::uint64_t matches = 0;
        std::uint64_t last_match = 0;  ///< Number of a frame, from 1.
        std::uint64_t last_track = 0;
        bool is_tracked = false;  ///< Whether it was matched in its last counted frame.
    };

    bool counts(const TruthBox& object) const;
    void keepMatches(const Frame& frame, const std::vector<std::size_t>& objects,
                     FrameMatcher& matcher) const;
    void countMatches(const Frame& frame, const std::vector<std::size_t>& objects,
                      const std::vector<Match>& matches);
    void countMatch(Trajectory& trajectory, std::uint64_t track);

    ScoreOptions options;
    ScoreFigures sums;
    std::unordered_map<std::int64_t, Trajectory> trajectories;
};

}  // namespace kelvora::scoring
