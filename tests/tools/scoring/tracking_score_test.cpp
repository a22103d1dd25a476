// SPDX-License-Identifier: MIT
#include "scoring/tracking_score.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora::scoring {
namespace {

constexpr double kFar = 1000.0;

TruthBox object(std::int64_t id, double x, bool is_moving = true, double visibility = 1.0) {
    return {0, {x, 0, 10, 10}, id, visibility, is_moving};
}

ClusterBox cluster(double x, std::uint64_t track = 0) {
    return {0, {x, 0, 10, 10}, track};
}

ScoreOptions withTracks() {
    ScoreOptions options;
    options.has_tracks = true;
    return options;
}

ScoreFigures figuresOf(const ScoreOptions& options, const std::vector<Frame>& frames) {
    TrackingScore score(options);
    for (const Frame& frame : frames) {
        score.add(frame);
    }
    return score.figures();
}

/// An object in one place that is matched with these tracks, one per frame; 0 where it is missed.
ScoreFigures figuresOfTracks(const std::vector<std::uint64_t>& tracks) {
    std::vector<Frame> frames;
    for (const std::uint64_t track : tracks) {
        frames.push_back({{object(1, 0)}, {}});
        if (track != 0) {
            frames.back().clusters.push_back(cluster(0, track));
        }
    }
    return figuresOf(withTracks(), frames);
}

TEST(TrackingScore, OfNoFramesIsNothing) {
    const ScoreFigures figures = figuresOf({}, {});
    EXPECT_EQ(figures.frames, 0U);
    EXPECT_EQ(figures.trajectories, 0U);
}

TEST(TrackingScore, CountsMatchesMissesAndFalsePositives) {
    const ScoreFigures figures =
        figuresOf({}, {{{object(1, 0), object(2, 100)}, {cluster(0), cluster(50), cluster(60)}},
                       {{}, {cluster(0)}},
                       {{object(2, 0)}, {}}});
    EXPECT_EQ(figures.frames, 3U);
    EXPECT_EQ(figures.objects, 3U);
    EXPECT_EQ(figures.matches, 1U);
    EXPECT_EQ(figures.misses(), 2U);
    EXPECT_EQ(figures.falsePositives(), 3U);
    EXPECT_DOUBLE_EQ(figures.iou_sum, 1.0);
}

TEST(TrackingScore, IgnoresObjectsThatStandStillAndTheirClusters) {
    const std::vector<Frame> frames = {{{object(1, 0, false)}, {}},
                                       {{object(1, 0, false)}, {cluster(0), cluster(50)}}};
    const ScoreFigures figures = figuresOf({}, frames);
    EXPECT_EQ(figures.objects, 0U);
    EXPECT_EQ(figures.ignored_objects, 2U);
    EXPECT_EQ(figures.ignored_clusters, 1U);
    EXPECT_EQ(figures.falsePositives(), 1U);
    EXPECT_EQ(figures.trajectories, 0U);

    ScoreOptions options;
    options.include_still = true;
    EXPECT_EQ(figuresOf(options, frames).objects, 2U);
    EXPECT_EQ(figuresOf(options, frames).matches, 1U);
}

TEST(TrackingScore, IgnoresObjectsOfWhichTooLittleCanBeSeen) {
    ScoreOptions options;
    options.min_visibility = 0.5;
    const ScoreFigures figures =
        figuresOf(options, {{{object(1, 0, true, 0.49), object(2, 100, true, 0.5)}, {cluster(0)}}});
    EXPECT_EQ(figures.objects, 1U);
    EXPECT_EQ(figures.misses(), 1U);
    EXPECT_EQ(figures.falsePositives(), 0U);
}

TEST(TrackingScore, GivesIgnoredObjectsOnlyTheClustersThatOthersLeave) {
    // The cluster overlaps more with the ignored object.
    const ScoreFigures figures =
        figuresOf({}, {{{object(1, 0, false), object(2, 2)}, {cluster(0)}}});
    EXPECT_EQ(figures.matches, 1U);
    EXPECT_EQ(figures.ignored_clusters, 0U);
}

TEST(TrackingScore, CountsASwitchWhereTheTrackOfAnObjectChanges) {
    EXPECT_EQ(figuresOfTracks({5, 5, 5}).switches, 0U);
    EXPECT_EQ(figuresOfTracks({5, 6, 6}).switches, 1U);
    EXPECT_EQ(figuresOfTracks({5, 6, 5}).switches, 2U);
}

TEST(TrackingScore, CountsASwitchAlsoAfterAGap) {
    EXPECT_EQ(figuresOfTracks({0, 5, 0, 5}).switches, 0U);
    EXPECT_EQ(figuresOfTracks({5, 0, 0, 6}).switches, 1U);
}

TEST(TrackingScore, CountsAFragmentationWhereAnObjectIsLostAndFoundAgain) {
    EXPECT_EQ(figuresOfTracks({0, 5, 5, 0}).fragmentations, 0U);
    EXPECT_EQ(figuresOfTracks({5, 0, 0, 5}).fragmentations, 1U);
    EXPECT_EQ(figuresOfTracks({5, 0, 6, 0, 6}).fragmentations, 2U);
    EXPECT_EQ(figuresOfTracks({5, 6}).fragmentations, 0U);
}

TEST(TrackingScore, CountsNoFragmentationWhileAnObjectIsIgnoredOrAway) {
    const Frame seen = {{object(1, 0)}, {cluster(0, 5)}};
    const Frame still = {{object(1, 0, false)}, {}};
    const Frame away = {{object(2, kFar, false)}, {}};
    EXPECT_EQ(figuresOf(withTracks(), {seen, still, seen, away, seen}).fragmentations, 0U);
    const Frame missed = {{object(1, 0)}, {}};
    EXPECT_EQ(figuresOf(withTracks(), {seen, still, missed, still, seen}).fragmentations, 1U);
}

TEST(TrackingScore, CountsASwitchAfterAnObjectWasIgnored) {
    EXPECT_EQ(figuresOf(withTracks(), {{{object(1, 0)}, {cluster(0, 5)}},
                                       {{object(1, 0, false)}, {cluster(0, 6)}},
                                       {{object(1, 0)}, {cluster(0, 7)}}})
                  .switches,
              1U);
}

TEST(TrackingScore, KeepsAMatchOfTheFrameBeforeAlthoughAnotherTrackIsNearer) {
    const ScoreFigures figures = figuresOf(
        withTracks(),
        {{{object(1, 0)}, {cluster(0, 5)}}, {{object(1, 0)}, {cluster(2, 5), cluster(0, 6)}}});
    EXPECT_EQ(figures.switches, 0U);
    EXPECT_EQ(figures.falsePositives(), 1U);
    EXPECT_DOUBLE_EQ(figures.iou_sum, 1.0 + 80.0 / 120.0);
}

TEST(TrackingScore, KeepsAMatchOnlyFromTheFrameJustBefore) {
    const Frame both = {{object(1, 0)}, {cluster(2, 5), cluster(0, 6)}};
    const ScoreFigures figures =
        figuresOf(withTracks(), {{{object(1, 0)}, {cluster(0, 5)}}, {{}, {}}, both});
    EXPECT_EQ(figures.switches, 1U);
    EXPECT_DOUBLE_EQ(figures.iou_sum, 2.0);
}

TEST(TrackingScore, ReassignsAnObjectWhoseTrackIsTooFar) {
    const ScoreFigures figures = figuresOf(
        withTracks(),
        {{{object(1, 0)}, {cluster(0, 5)}}, {{object(1, 0)}, {cluster(9, 5), cluster(0, 6)}}});
    EXPECT_EQ(figures.switches, 1U);
    EXPECT_EQ(figures.matches, 2U);
}

TEST(TrackingScore, CountsTwoSwitchesWhereTwoTracksAreExchanged) {
    const ScoreFigures figures = figuresOf(
        withTracks(), {{{object(1, 0), object(2, 100)}, {cluster(0, 5), cluster(100, 6)}},
                       {{object(1, 0), object(2, 100)}, {cluster(0, 6), cluster(100, 5)}}});
    EXPECT_EQ(figures.switches, 2U);
    EXPECT_DOUBLE_EQ(figures.mota().value(), 0.5);
}

TEST(TrackingScore, SortsTrajectoriesByTheShareOfFramesInWhichTheyAreMatched) {
    const auto kind = [](const std::vector<std::uint64_t>& tracks) {
        const ScoreFigures figures = figuresOfTracks(tracks);
        EXPECT_EQ(figures.mostly_tracked + figures.partially_tracked + figures.mostly_lost, 1U);
        return figures.mostly_tracked == 1 ? 'T' : figures.mostly_lost == 1 ? 'L' : 'P';
    };
    EXPECT_EQ(kind({5, 5, 5, 5, 0}), 'T');
    EXPECT_EQ(kind({5, 5, 5, 0}), 'P');
    EXPECT_EQ(kind({5, 0, 0, 0, 0}), 'P');
    EXPECT_EQ(kind({5, 0, 0, 0, 0, 0}), 'L');
    EXPECT_EQ(kind({0}), 'L');
}

}  // namespace
}  // namespace kelvora::scoring
