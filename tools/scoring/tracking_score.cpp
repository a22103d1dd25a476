// SPDX-License-Identifier: MIT
#include "scoring/tracking_score.hpp"

namespace kelvora::scoring {

TrackingScore::TrackingScore(const ScoreOptions& options_) : options(options_) {
    sums.has_tracks = options.has_tracks;
}

void TrackingScore::add(const Frame& frame) {
    ++sums.frames;
    std::vector<std::size_t> counted;
    std::vector<std::size_t> ignored;
    for (std::size_t i = 0; i < frame.truth.size(); ++i) {
        (counts(frame.truth[i]) ? counted : ignored).push_back(i);
    }
    FrameMatcher matcher(frame, options.min_iou, options.most_pairs);
    keepMatches(frame, counted, matcher);
    matcher.matchAll(counted);
    countMatches(frame, counted, matcher.matches());

    const std::size_t matches = matcher.matches().size();
    matcher.matchAll(ignored);
    sums.ignored_objects += ignored.size();
    sums.clusters += frame.clusters.size();
    sums.ignored_clusters += matcher.matches().size() - matches;
}

ScoreFigures TrackingScore::figures() const {
    ScoreFigures figures = sums;
    figures.trajectories = trajectories.size();
    for (const auto& [id, trajectory] : trajectories) {
        if (5 * trajectory.matches >= 4 * trajectory.frames) {
            ++figures.mostly_tracked;
        } else if (5 * trajectory.matches < trajectory.frames) {
            ++figures.mostly_lost;
        } else {
            ++figures.partially_tracked;
        }
    }
    return figures;
}

bool TrackingScore::counts(const TruthBox& object) const {
    return (object.is_moving || options.include_still) &&
           object.visibility >= options.min_visibility;
}

void TrackingScore::keepMatches(const Frame& frame, const std::vector<std::size_t>& objects,
                                FrameMatcher& matcher) const {
    if (!options.has_tracks) {
        return;
    }
    for (const std::size_t object : objects) {
        const auto known = trajectories.find(frame.truth[object].id);
        if (known != trajectories.end() && known->second.last_match + 1 == sums.frames) {
            matcher.matchWithTrack(object, known->second.last_track);
        }
    }
}

void TrackingScore::countMatches(const Frame& frame, const std::vector<std::size_t>& objects,
                                 const std::vector<Match>& matches) {
    sums.objects += objects.size();
    sums.matches += matches.size();
    for (const std::size_t object : objects) {
        ++trajectories[frame.truth[object].id].frames;
    }
    for (const Match& match : matches) {
        sums.iou_sum += match.iou;
        countMatch(trajectories[frame.truth[match.object].id], frame.clusters[match.cluster].track);
    }
    for (const std::size_t object : objects) {
        Trajectory& trajectory = trajectories[frame.truth[object].id];
        trajectory.is_tracked = trajectory.last_match == sums.frames;
    }
}

void TrackingScore::countMatch(Trajectory& trajectory, std::uint64_t track) {
    const bool is_first = trajectory.matches == 0;
    sums.switches += !is_first && track != trajectory.last_track ? 1 : 0;
    sums.fragmentations += !is_first && !trajectory.is_tracked ? 1 : 0;
    ++trajectory.matches;
    trajectory.last_match = sums.frames;
    trajectory.last_track = track;
}

}  // namespace kelvora::scoring
