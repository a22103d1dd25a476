// SPDX-License-Identifier: MIT
#include "kelvora/cluster_tracker.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/boxes.hpp"
#include "support/tracks.hpp"

namespace kelvora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

std::string refusal(float max_distance, float max_size_change, int max_missed, int min_hits) {
    try {
        ClusterTracker(max_distance, max_size_change, max_missed, min_hits);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "accepted";
}

TEST(ClusterTracker, RefusesParametersBelowTheirBoundsAndNaN) {
    EXPECT_EQ(refusal(-1, 15, 10, 3), "ClusterTracker: max_distance must not be negative");
    EXPECT_EQ(refusal(kNaN, 15, 10, 3), "ClusterTracker: max_distance must not be negative");
    EXPECT_EQ(refusal(20, -0.1F, 10, 3), "ClusterTracker: max_size_change must not be negative");
    EXPECT_EQ(refusal(20, kNaN, 10, 3), "ClusterTracker: max_size_change must not be negative");
    EXPECT_EQ(refusal(20, 15, -1, 3), "ClusterTracker: max_missed must not be negative");
    EXPECT_EQ(refusal(20, 15, 10, 0), "ClusterTracker: min_hits must be at least 1");
    EXPECT_EQ(refusal(0, 0, 0, 1), "accepted");
}

TEST(ClusterTracker, HasNoTracksAtFirstNorAfterBatchesWithoutClusters) {
    ClusterTracker tracker;
    EXPECT_THAT(tracker.getTracks(), IsEmpty());
    EXPECT_THAT(tracker.update({}), IsEmpty());
    EXPECT_THAT(tracker.update({}), IsEmpty());
    EXPECT_THAT(tracker.getTracks(), IsEmpty());
    EXPECT_THAT(tracker.update({square(50, 50, 7)}), ElementsAre(1));
}

TEST(ClusterTracker, NumbersTracksFrom1InTheOrderOfTheClusters) {
    ClusterTracker tracker;
    EXPECT_THAT(tracker.update({square(50, 50, 0), square(300, 50, 0)}), ElementsAre(1, 2));
    EXPECT_THAT(tracker.update({square(500, 50, 10), square(300, 50, 10), square(50, 50, 10)}),
                ElementsAre(3, 2, 1));
}

TEST(ClusterTracker, NeverUsesAnIdAgain) {
    ClusterTracker tracker;
    for (int id = 1; id < 20; ++id) {
        EXPECT_THAT(tracker.update({square(50, 50, 0)}), ElementsAre(id));
        tracker.update({});
    }
}

TEST(ClusterTracker, ListsItsTracksByAscendingIdWithTheirClusters) {
    ClusterTracker tracker;
    tracker.update({square(50, 50, 0), square(300, 50, 0)});
    tracker.update({square(301, 52, 10), square(51, 50, 10)});
    const std::vector<Track> tracks = tracker.getTracks();
    ASSERT_THAT(tracks, SizeIs(2));
    EXPECT_EQ(tracks[0].id, 1);
    EXPECT_EQ(tracks[0].cluster, 1);
    EXPECT_EQ(tracks[1].id, 2);
    EXPECT_EQ(tracks[1].cluster, 0);
    EXPECT_THAT(boxesOf({tracks[0].box, tracks[1].box}),
                ElementsAre(Box{41, 40, 20, 20}, Box{291, 42, 20, 20}));
    EXPECT_EQ(tracks[0].box.timestamp, 10U);
}

TEST(ClusterTracker, ConfirmsATrackInItsMinHitsthUpdate) {
    ClusterTracker tracker(20, 15, 10, 4);
    for (int hits = 1; hits < 4; ++hits) {
        showRepeatedly(tracker, {square(50, 50, 0)}, 1);
        EXPECT_EQ(tracker.getTracks().front().hits, hits);
        EXPECT_EQ(tracker.getTracks().front().state, TrackState::Tentative);
    }
    showRepeatedly(tracker, {square(50, 50, 0)}, 1);
    EXPECT_EQ(tracker.getTracks().front().state, TrackState::Confirmed);
}

TEST(ClusterTracker, ConfirmsATrackAtOnceIfOneHitIsEnough) {
    ClusterTracker tracker(20, 15, 10, 1);
    tracker.update({square(50, 50, 0), square(300, 50, 0)});
    for (const Track& track : tracker.getTracks()) {
        EXPECT_EQ(track.state, TrackState::Confirmed);
        EXPECT_EQ(track.hits, 1);
    }
}

TEST(ClusterTracker, EndsATentativeTrackAtItsFirstMiss) {
    ClusterTracker tracker(20, 15, 10, 3);
    showRepeatedly(tracker, {square(50, 50, 0)}, 2);
    tracker.update({});
    EXPECT_THAT(tracker.getTracks(), IsEmpty());
    showRepeatedly(tracker, {square(50, 50, 0)}, 2, 20'000);
    EXPECT_THAT(tracker.update({square(300, 50, 40'000)}), ElementsAre(3));
    EXPECT_THAT(tracker.getTracks(), SizeIs(1));
}

TEST(ClusterTracker, KeepsAConfirmedTrackForExactlyMaxMissedUpdates) {
    for (const bool with_others : {false, true}) {
        ClusterTracker tracker(20, 15, 4, 3);
        showRepeatedly(tracker, {square(50, 50, 0)}, 3);
        for (int missed = 1; missed <= 4; ++missed) {
            tracker.update(with_others ? std::vector<ClusterGeometry>{square(300, 50, 30'000)}
                                       : std::vector<ClusterGeometry>{});
            const Track track = tracker.getTracks().front();
            EXPECT_EQ(track.id, 1);
            EXPECT_EQ(track.missed, missed);
            EXPECT_EQ(track.cluster, -1);
            EXPECT_EQ(track.hits, 3);
            EXPECT_FALSE(track.is_hidden);
        }
        tracker.update(with_others ? std::vector<ClusterGeometry>{square(300, 50, 30'000)}
                                   : std::vector<ClusterGeometry>{});
        EXPECT_THAT(tracker.getTracks(), SizeIs(with_others ? 1 : 0));
    }
}

TEST(ClusterTracker, CountsMissesFromZeroAfterEachHit) {
    ClusterTracker tracker(20, 15, 2, 3);
    showRepeatedly(tracker, {square(50, 50, 0)}, 3);
    for (int i = 0; i < 5; ++i) {
        tracker.update({});
        tracker.update({});
        EXPECT_THAT(tracker.update({square(50, 50, 30'000)}), ElementsAre(1));
        EXPECT_EQ(tracker.getTracks().front().missed, 0);
    }
}

TEST(ClusterTracker, EndsAConfirmedTrackAtItsFirstMissIfNoneIsAllowed) {
    ClusterTracker tracker(20, 15, 0, 3);
    showRepeatedly(tracker, {square(50, 50, 0)}, 5);
    tracker.update({});
    EXPECT_THAT(tracker.getTracks(), IsEmpty());
}

TEST(ClusterTracker, KnowsTheVelocityOfAStraightLineForAnyIntervals) {
    ClusterTracker tracker;
    for (const std::uint64_t time :
         std::vector<std::uint64_t>{0, 5'000, 7'000, 30'000, 31'000, 31'001, 50'000}) {
        const float seconds = static_cast<float>(time) * 1e-6F;
        ASSERT_THAT(tracker.update({square(50 + 400 * seconds, 90 - 300 * seconds, time)}),
                    ElementsAre(1));
    }
    EXPECT_NEAR(tracker.getTracks().front().vx, 400, 0.01);
    EXPECT_NEAR(tracker.getTracks().front().vy, -300, 0.01);
}

TEST(ClusterTracker, HasNoVelocityAfterOneHit) {
    ClusterTracker tracker;
    tracker.update({square(50, 50, 0)});
    EXPECT_EQ(tracker.getTracks().front().vx, 0);
    EXPECT_EQ(tracker.getTracks().front().vy, 0);
}

TEST(ClusterTracker, ForgetsTheOldVelocityOfAnObjectThatTurns) {
    ClusterTracker tracker;
    for (int i = 0; i < 20; ++i) {
        const auto x = static_cast<float>(i < 10 ? 5 * i : 50 - 5 * (i - 10));
        tracker.update({square(100 + x, 50, static_cast<std::uint64_t>(i) * 10'000)});
    }
    EXPECT_EQ(tracker.getTracks().front().id, 1);
    EXPECT_NEAR(tracker.getTracks().front().vx, -500, 0.01);
}

TEST(ClusterTracker, SmoothsTheJitterOfBoxes) {
    ClusterTracker tracker;
    for (int i = 0; i < 10; ++i) {
        const auto jitter = static_cast<float>(i % 2);
        tracker.update({square(100.0F + static_cast<float>(4 * i) + jitter, 50,
                               static_cast<std::uint64_t>(i) * 10'000)});
    }
    // The last two positions alone would give 500.
    EXPECT_NEAR(tracker.getTracks().front().vx, 400, 10);
}

TEST(ClusterTracker, PredictsTheUsualSizeAlongTheLineWhereThereIsNoCluster) {
    ClusterTracker tracker;
    const std::vector<float> widths = {20, 20, 26, 20, 21};
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const auto x = static_cast<float>(100 + 8 * i);
        tracker.update({boxAround(x, 50, widths[i], 10, i * 10'000)});
    }
    tracker.update({square(500, 400, 70'000)});
    const Track track = tracker.getTracks().front();
    EXPECT_EQ(track.cluster, -1);
    EXPECT_FLOAT_EQ(track.box.width, 20);
    EXPECT_FLOAT_EQ(track.box.height, 10);
    EXPECT_NEAR(track.box.x, 100 + 8 * 7 - 10, 1e-3);
    EXPECT_NEAR(track.box.y, 45, 1e-3);
    EXPECT_EQ(track.box.timestamp, 70'000U);
}

TEST(ClusterTracker, LeavesPredictionsWhereTheyAreWithoutClusters) {
    ClusterTracker tracker;
    for (int i = 0; i < 5; ++i) {
        tracker.update(
            {square(static_cast<float>(100 + 8 * i), 50, static_cast<std::uint64_t>(i) * 10'000)});
    }
    tracker.update({});
    tracker.update({});
    EXPECT_NEAR(tracker.getTracks().front().box.x, 122, 1e-3);
}

// It is 80 pixels away from its last position, four times the largest distance.
TEST(ClusterTracker, FindsAMovingObjectAgainAfterUpdatesWithoutIt) {
    for (const bool with_others : {false, true}) {
        ClusterTracker tracker;
        const auto object = [](int i) {
            return square(static_cast<float>(100 + 8 * i), 50,
                          static_cast<std::uint64_t>(i) * 10'000);
        };
        for (int i = 0; i < 5; ++i) {
            tracker.update({object(i)});
        }
        for (int i = 5; i < 14; ++i) {
            const auto time = static_cast<std::uint64_t>(i) * 10'000;
            tracker.update(with_others ? std::vector<ClusterGeometry>{square(500, 400, time)}
                                       : std::vector<ClusterGeometry>{});
        }
        EXPECT_THAT(tracker.update({object(14)}), ElementsAre(1));
        EXPECT_NEAR(tracker.getTracks().front().vx, 800, 0.1);
    }
}

TEST(ClusterTracker, TellsCrossingObjectsApartByTheirMotion) {
    ClusterTracker tracker(20, 4, 10, 3);
    for (int i = 0; i < 30; ++i) {
        const auto time = static_cast<std::uint64_t>(i) * 10'000;
        const auto way = static_cast<float>(6 * i);
        const ClusterGeometry right = square(100 + way, 50, time);
        const ClusterGeometry left = square(271 - way, 58, time);
        EXPECT_THAT(tracker.update({right, left}), ElementsAre(1, 2));
    }
}

TEST(ClusterTracker, BoundsTheDistanceFromThePredictionAndTheChangeOfSize) {
    const auto second_id = [](const ClusterGeometry& second) {
        ClusterTracker tracker(20, 15, 10, 3);
        tracker.update({square(100, 100, 0)});
        return tracker.update({second}).front();
    };
    EXPECT_EQ(second_id(square(120, 100, 10)), 1);
    EXPECT_EQ(second_id(square(120.1F, 100, 10)), 2);
    EXPECT_EQ(second_id(boxAround(100, 100, 35, 20, 10)), 1);
    EXPECT_EQ(second_id(boxAround(100, 100, 35.1F, 20, 10)), 2);
    EXPECT_EQ(second_id(boxAround(100, 100, 20, 4.9F, 10)), 2);
}

}  // namespace
}  // namespace kelvora::test
