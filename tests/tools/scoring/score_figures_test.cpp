// SPDX-License-Identifier: MIT
#include "scoring/score_figures.hpp"

#include <gtest/gtest.h>

namespace kelvora::scoring {
namespace {

ScoreFigures someFigures() {
    ScoreFigures figures;
    figures.has_tracks = true;
    figures.objects = 100;
    figures.clusters = 95;
    figures.ignored_clusters = 5;
    figures.matches = 80;
    figures.iou_sum = 60.0;
    figures.switches = 3;
    return figures;
}

TEST(ScoreFigures, FollowFromTheCounts) {
    const ScoreFigures figures = someFigures();
    EXPECT_EQ(figures.misses(), 20U);
    EXPECT_EQ(figures.falsePositives(), 10U);
    EXPECT_DOUBLE_EQ(figures.precision().value(), 80.0 / 90.0);
    EXPECT_DOUBLE_EQ(figures.recall().value(), 0.8);
    EXPECT_DOUBLE_EQ(figures.mota().value(), 1.0 - 33.0 / 100.0);
    EXPECT_DOUBLE_EQ(figures.motp().value(), 0.75);
    // 100 frames of 50 ms are 5 s.
    EXPECT_DOUBLE_EQ(figures.switchesPerTenSeconds(50'000).value(), 6.0);
}

TEST(ScoreFigures, LeaveSwitchesOutOfAccuracyWithoutTracks) {
    ScoreFigures figures = someFigures();
    figures.has_tracks = false;
    EXPECT_DOUBLE_EQ(figures.mota().value(), 0.7);
    EXPECT_FALSE(figures.switchesPerTenSeconds(50'000).has_value());
}

TEST(ScoreFigures, AreNegativeForMoreErrorsThanObjects) {
    ScoreFigures figures;
    figures.objects = 1;
    figures.clusters = 3;
    EXPECT_DOUBLE_EQ(figures.mota().value(), -3.0);
}

TEST(ScoreFigures, AreAbsentWhereThereIsNothingToDivideBy) {
    ScoreFigures figures;
    figures.has_tracks = true;
    EXPECT_FALSE(figures.precision().has_value());
    EXPECT_FALSE(figures.recall().has_value());
    EXPECT_FALSE(figures.mota().has_value());
    EXPECT_FALSE(figures.motp().has_value());
    EXPECT_FALSE(figures.switchesPerTenSeconds(10).has_value());
    EXPECT_FALSE(someFigures().switchesPerTenSeconds(0).has_value());
}

}  // namespace
}  // namespace kelvora::scoring
